var ;
