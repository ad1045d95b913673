cc own.c $(pkg-config --cflags --libs Corvale) -o own
./own
c++ -std=c++20 own.cpp $(pkg-config --cflags --libs Corvale) -o own_cpp
./own_cpp
