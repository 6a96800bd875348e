set A := {'a', 'b'};
var x{A} >= 0;
s.t. cap{i in A}: 1 <= 2*x[i] <= (if i = 'a' then 1 else 3);
s.t. c7: -5 <= x['a'] - x['b'] <= 5;
end;
