* solution of the fuzz model
modelStat 1
solveStat 1
rows 2
cols 2
row 1 1 0.5 0 0 r(a)
row 2 3 0 2 0 s
col 1 1 0 2 0 x(a)
col 2 1 -1 3 0 y
