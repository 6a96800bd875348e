var x >= 0;

minimize z: x +;
end;
