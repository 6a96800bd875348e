var x; var y;
minimize band_lo: x;
s.t. band: -1 <= x + y <= 4;
s.t. r17: x >= 0;
s.t. r{i in 17..17}: y >= 0;
end;
