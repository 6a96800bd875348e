/* Weekly plan of a small factory, with mistakes that ANALYSIS finds from signs and
   bounds alone, before any solve. Each column below has one:

   hire    extra hands that loosen the machine row and cost nothing: they relax it (21)
   scrap   scrap sold at a profit, in no row: it will sit at its upper bound (2)
   resell  bought-in goods sold on, that only count towards the minimum output:
           nothing holds them back, and they earn money (20)
   rent    machine hours rented in at a cost, that only take machine time: they will
           stay at their lower bound (1)
   idle    idle hours, in the machine row only: they will be zero (23)
   stock   a stock change that the modeller forgot to bound below, with a holding cost:
           it runs off to minus infinity (25)
   adjust  a free correction term in the machine row only: it relaxes the row (26)
   loss    a loss between -10 and 0 that weighs on the income and only helps the
           minimum output, reported with its zero upper bound (24)                 */

set Products;
param profit{Products};
param hours{Products};

var make{Products} >= 0;
var hire >= 0;
var scrap >= 0, <= 50;
var resell >= 0;
var rent >= 1, <= 8;
var idle >= 0, <= 40;
var stock;
var adjust;
var loss >= -10, <= 0;

maximize income: sum{p in Products} profit[p] * make[p] + 2 * scrap + 5 * resell
                 - 3 * rent - stock - 2 * loss;

s.t. machine: sum{p in Products} hours[p] * make[p] + rent + idle + stock + adjust
              <= 40 + hire;
s.t. minOutput: sum{p in Products} make[p] + resell + loss >= 10;

data;

set Products := bolts nuts;
param profit := bolts 3  nuts 2;
param hours := bolts 2  nuts 1;

end;
