# A small plan in all the forms the host reads: two plants, two markets.
set I := {'n', 's'};
set J := {'e', 'w'};
param cap{I} := 350;
var x{I, J} >= 0;
var y binary;
var z integer >= 0, <= 10;
var w;

minimize cost: 2*x['n','e'] + 3*x['n','w'] + 4*x['s','e'] + 1*x['s','w'] + 5*y + z
             + 0.5*w;
s.t. sup{i in I}: sum{j in J} x[i,j] <= cap[i];
s.t. dem{j in J}: sum{i in I} x[i,j] >= 300;
s.t. link: x['n','e'] - 100*y <= 0;
s.t. band: 10 <= z + x['s','w'] <= 500;
s.t. fix: x['n','w'] + z - w = 40;
end;
