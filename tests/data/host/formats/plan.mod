set C := {'new york', 'chicago'};
var ship{C} >= 0, <= 100;
var objvar >= 1;
maximize profit: sum{c in C} 3*ship[c] + objvar - 7;
s.t. lim{c in C}: ship[c] + objvar <= 50;
minimize spare: objvar;
end;
