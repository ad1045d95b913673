# [build]
gfortran $checkout/bindings/fortran/src/corvale_api.f90 $checkout/bindings/fortran/src/corvale.f90 \
    load_file.f90 -o load_file
./load_file orbit.inp
# [build]
