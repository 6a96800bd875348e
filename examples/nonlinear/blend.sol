blend: a locally optimal point, written by hand

Options
3
1
1
0
3
3
3
3
2
0
0
2
2
0
objno 0 0
