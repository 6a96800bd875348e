/* Two warehouses that hold 5 and 3 cases cannot meet a demand of 10: the model is
   infeasible. NONOPT lists what the solver flagged at its last point: the demand row,
   short by 2 cases; VERBOSE adds its row sum. */

var fromA >= 0, <= 5;
var fromB >= 0, <= 3;

minimize cost: 2 * fromA + 3 * fromB;

s.t. demand: fromA + fromB >= 10;

end;
