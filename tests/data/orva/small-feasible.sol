* x = y = 1: feasible, not optimal
modelStat 7
solveStat 3
rows 3
cols 3
row 1 0 -1 0 0
row 2 2 2 0 0
row 3 1 0 2 0
col 1 1 0 2 0
col 2 1 0 2 0
col 3 3 0 2 0
