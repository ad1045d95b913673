# [build]
cmake -S own_program -B build -DCMAKE_PREFIX_PATH=$prefix >cmake.log
cmake --build build >>cmake.log
build/load_file orbit.inp
# [build]
