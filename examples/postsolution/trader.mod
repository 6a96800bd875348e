/* A trader buys a good at 3 and sells it at 5, and may sell no more than he buys. The
   model forgot to limit the purchases, so the profit is unbounded. NONOPT lists the
   purchases along which the solver found no end, with the sales and the profit that they
   drive; VERBOSE adds their budgets. */

var buy >= 0;
var sell >= 0;

maximize profit: 5 * sell - 3 * buy;

s.t. stock: sell <= buy;

end;
