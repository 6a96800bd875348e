/* A farm plan, solved to optimality: POSTOPT rebuilds each reduced cost from the row
   prices and each row level term by term.

   Wheat earns 3 an acre and may take at most 3 acres; corn earns 2. Land (4 acres) binds
   at a price of 2; labour (7 days, wheat 1 a acre, corn 3) is left with 1 day. Wheat
   stands at its bound with a reduced cost of 1: an acre more would earn 3 and take land
   worth 2. */

var wheat >= 0, <= 3;
var corn >= 0;

maximize profit: 3 * wheat + 2 * corn;

s.t. land: wheat + corn <= 4;
s.t. labour: wheat + 3 * corn <= 7;

end;
