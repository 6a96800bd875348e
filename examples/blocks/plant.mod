# Production plan with two flaws that the block reports point at:
#  - sell earns profit and only a lower limit holds it: it is unbounded;
#  - none says -make >= 0, which forces every make to zero.
set PROD;
set RES;
param profit{PROD};
param use{RES, PROD};
param avail{RES};

var make{PROD} >= 0;
var sell >= 0;

maximize total: sum{p in PROD} profit[p] * make[p] + 2 * sell;
s.t. cap{r in RES}: sum{p in PROD} use[r, p] * make[p] <= avail[r];
s.t. promo: sell >= 1;
s.t. none{p in PROD}: -make[p] >= 0;

data;
set PROD := chairs tables;
set RES := wood labor;
param profit := chairs 30 tables 50;
param use: chairs tables :=
  wood 2 4
  labor 3 2;
param avail := wood 100 labor 90;
end;
