var x;
s.t. c: x >= 1;
display 'hello';
end;
