set S;
param b{S};
var x{S} integer, >= 0, <= 1;
s.t. need{s in S}: x[s] >= b[s];
end;
