param p{1..3} >= 0;
var x;
minimize o: x + sum{i in 1..3} p[i];
end;
