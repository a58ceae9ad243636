local parts = {}
for i = 1, 100000 do parts[#parts + 1] = "piece" .. i end
print(#table.concat(parts))
