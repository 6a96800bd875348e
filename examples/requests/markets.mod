/* Shipping from two plants to two markets, with a penalty on short supply: a small model to
   point requests at (see markets.mrk). */

set Plants;
set Markets;

param supply{p in Plants};           /* cases a plant can ship */
param demand{m in Markets};          /* cases a market needs */
param cost{p in Plants, m in Markets};  /* dollars per case */

var ship{p in Plants, m in Markets} >= 0;   /* cases shipped */
var short{m in Markets} >= 0, <= 100;       /* cases a market goes without */

minimize total: sum{p in Plants, m in Markets} cost[p,m] * ship[p,m]
              + 50 * sum{m in Markets} short[m];

s.t. limit{p in Plants}: sum{m in Markets} ship[p,m] <= supply[p];
s.t. meet{m in Markets}: sum{p in Plants} ship[p,m] + short[m] >= demand[m];

data;

set Plants := seattle austin;
set Markets := 'New York' chicago;

param supply := seattle 350  austin 600;
param demand := 'New York' 325  chicago 300;

param cost:  'New York'  chicago :=
  seattle      2.5         1.7
  austin       1.8         0.9;

end;
