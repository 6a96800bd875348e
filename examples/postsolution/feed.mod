/* A feed of 11 tonnes, blended from oats (2 to 10 t), barley and rye (at most 4 t), with
   barley at most 2 t above rye. ADVISORY, before any solve, points at what a point of
   zeros cannot meet or what nothing holds back: the minimum of oats, the two grains whose
   value rises with their amount, the recipe that needs 11 tonnes. NONOPT, after the solve
   found an optimum, lists the same and, by the limits of modrake.opt (10 to the power 0),
   the levels and marginals above 1. */

var oats >= 2, <= 10;
var barley >= 0;
var rye >= 0, <= 4;

maximize value: 3 * oats + 4 * barley - rye;

s.t. recipe: oats + barley + rye = 11;
s.t. balance: barley - rye <= 2;

end;
