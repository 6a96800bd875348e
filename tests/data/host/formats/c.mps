NAME c
ROWS
 N obj
 G r
COLUMNS
 x obj 1 r 1
RHS
 RHS obj -10 r 2
ENDATA
