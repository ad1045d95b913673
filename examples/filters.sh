# [filters]
printf '25\n100000\n' | corvale alpha5
echo 193.2716 | corvale angle --hours
printf '1.5-3\n2.5D+02\n' | corvale number
# [filters]
