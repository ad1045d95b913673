# [build]
mkdir corvale
cp $checkout/bindings/python/corvale/capi.py corvale
python3 load_file.py orbit.inp
# [build]
