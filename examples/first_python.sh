# [build]
export PYTHONPATH=$checkout/bindings/python
python3 load_file.py orbit.inp
# [build]
