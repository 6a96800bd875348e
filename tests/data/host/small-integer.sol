* an integer solution of small.json, the solve interrupted: every row at 1.25 with marginal
* -0.5, every column at 0.1 with marginal 0.5 but objvar at 1/3; no status is 0
* row|col index level marginal stat cstat name
modelStat 8
solveStat 3
rows 9
cols 8
row 1 1.25 -0.5 2 1 cost
row 2 1.25 -0.5 2 1 sup(n)
row 3 1.25 -0.5 2 1 sup(s)
row 4 1.25 -0.5 2 1 dem(e)
row 5 1.25 -0.5 2 1 dem(w)
row 6 1.25 -0.5 2 1 link
row 7 1.25 -0.5 2 1 band_lo
row 8 1.25 -0.5 2 1 band_up
row 9 1.25 -0.5 2 1 fix
col 1 0.1 0.5 3 1 x(n,e)
col 2 0.1 0.5 3 1 x(n,w)
col 3 0.1 0.5 3 1 x(s,e)
col 4 0.1 0.5 3 1 x(s,w)
col 5 0.1 0.5 3 1 y
col 6 0.1 0.5 3 1 z
col 7 0.1 0.5 3 1 w
col 8 0.33333333333333331 0.5 3 1 objvar
