/* Transportation: ship a good from plants to markets at least freight cost. */

set Plants;
set Markets;

param supply{p in Plants};          /* capacity of plant p, cases */
param demand{m in Markets};         /* demand at market m, cases */
param distance{p in Plants, m in Markets};  /* thousands of miles */
param freight;                      /* dollars per case per thousand miles */
param cost{p in Plants, m in Markets} := freight * distance[p,m] / 1000;  /* thousands of dollars per case */

var ship{p in Plants, m in Markets} >= 0;   /* cases shipped */

minimize totalCost: sum{p in Plants, m in Markets} cost[p,m] * ship[p,m];

s.t. capacity{p in Plants}: sum{m in Markets} ship[p,m] <= supply[p];
s.t. meetDemand{m in Markets}: sum{p in Plants} ship[p,m] >= demand[m];

data;

set Plants := seattle san-diego;
set Markets := new-york chicago topeka;

param supply := seattle 350  san-diego 600;
param demand := new-york 325  chicago 300  topeka 275;

param distance:  new-york  chicago  topeka :=
  seattle          2.5       1.7      1.8
  san-diego        2.5       1.8      1.4;

param freight := 90;

end;
