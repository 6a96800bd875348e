* a solution with a level that is no number
modelStat 1
solveStat 1
rows 6
cols 7
row 1 abc 0 2 0
