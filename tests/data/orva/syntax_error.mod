/* A transportation model with a missing operator on line 6. */
set Plants;
set Markets;
param cost{Plants, Markets};
var ship{Plants, Markets} >= 0;
minimize total: sum{p in Plants, m in Markets} cost[p,m] ship[p,m];
data;
set Plants := a b;
set Markets := x y;
param cost: x y := a 1 2 b 3 4;
end;
