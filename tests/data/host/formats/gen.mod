param p := 1/0;
var x;
s.t. c: x >= p;
end;
