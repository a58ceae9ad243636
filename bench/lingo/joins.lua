local parts = {}
for i = 1, 500000 do parts[#parts + 1] = "piece" .. i end
print(#table.concat(parts))
