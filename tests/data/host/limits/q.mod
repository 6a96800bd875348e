set I;
param p{I} >= 0;
param q{I};
var x;
minimize o: x + sum{i in I} p[i];
