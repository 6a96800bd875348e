another model's solution

Options
3
1
1
0
2
2
3
3
1
1
1
1
1
objno 0 0
