/* A feed blend bought at least cost, with one faulty row of each kind below.

   spend       the fixed fee alone is above the budget: infeasible (5)
   noWaste     waste <= 0 keeps waste at zero (3)
   positiveBuy a non-negativity written as a row: redundant (7)
   minTotal    meant as "at least 3", with the sign of the 3 lost: redundant (4)
   noSpill     -spill >= 0 forces spill to zero (6)
   needFiller  -filler >= 1 with filler >= 2: infeasible (8)
   fillerMax   filler <= 1 with filler >= 2: infeasible (16)
   fillerCap   filler <= 10 with filler <= 5: redundant (17)
   fillerMin   filler >= 1 with filler >= 2: redundant (18)
   fillerNeed  filler >= 8 with filler <= 5: infeasible (19)                       */

set Ingredients;
param price{Ingredients};
param budget := 100;
param fixedFee := 120;

var buy{Ingredients} >= 0;
var waste >= 0;
var spill >= 0;
var filler >= 2, <= 5;

minimize cost: sum{i in Ingredients} price[i] * buy[i] + 0.1 * filler;

s.t. spend: sum{i in Ingredients} price[i] * buy[i] + fixedFee <= budget;
s.t. noWaste: waste <= 0;
s.t. positiveBuy: sum{i in Ingredients} buy[i] >= 0;
s.t. minTotal: -sum{i in Ingredients} buy[i] <= 3;
s.t. noSpill: -spill >= 0;
s.t. needFiller: -filler >= 1;
s.t. fillerMax: filler <= 1;
s.t. fillerCap: filler <= 10;
s.t. fillerMin: filler >= 1;
s.t. fillerNeed: filler >= 8;

data;

set Ingredients := corn oats soy;
param price := corn 2  oats 3  soy 5;

end;
