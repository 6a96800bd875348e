/* Shipping through a hub at least cost. The balance of each node is
   inflow - outflow = demand, and several nodes were given the wrong demand or the
   wrong arcs:

   kiosk   needs 2, but its one arc carries at most 1: infeasible (15)
   market  needs 3, but its arc must carry at least 5: infeasible (14)
   outlet  only receives and needs 0: its arc is forced to zero (13)
   spare   only sends and has no supply: its arc is forced to zero (11)
   yard    only sends, and its supply was typed as a demand of 3: infeasible (9)
   dump    only receives, and its demand was typed as a supply of 2: infeasible (10)

   and the free imbalance column is pinned to zero by its own row (12).           */

set Nodes;
set Arcs within Nodes cross Nodes;
param demand{Nodes};
param cost{Arcs};
param lo{Arcs} default 0;
param hi{Arcs} default Infinity;

var flow{(i, j) in Arcs} >= lo[i, j], <= hi[i, j];
var imbalance;

minimize shipping: sum{(i, j) in Arcs} cost[i, j] * flow[i, j];

s.t. balance{n in Nodes}:
  sum{(i, n) in Arcs} flow[i, n] - sum{(n, j) in Arcs} flow[n, j] = demand[n];
s.t. noImbalance: imbalance = 0;

data;

set Nodes := plant hub shop kiosk market outlet spare yard dump;
param demand := plant -10  hub 0  shop 4  kiosk 2  market 3  outlet 0  spare 0
                yard 3  dump -2;
param : Arcs : cost lo hi :=
  plant hub    1  .  .
  hub shop     2  .  .
  hub kiosk    2  .  1
  hub market   2  5  .
  hub outlet   2  .  .
  spare hub    1  .  .
  yard hub     1  .  .
  hub dump     1  .  . ;

end;
