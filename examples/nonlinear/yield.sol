yield: optimal with x at its lower bound, written by hand

Options
3
1
1
0
1
1
2
2
1
1
2
objno 0 0
