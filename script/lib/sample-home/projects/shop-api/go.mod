module example.org/shop-api

go 1.22
