/* Its data come from a separate file. */
set Items;
param weight{Items};
var take{Items} >= 0, <= 1;
maximize value: sum{i in Items} weight[i] * take[i];
s.t. limit: sum{i in Items} take[i] <= 2;
end;
