local list = {}
for i = 1, 200000 do list["key" .. i] = i end
local sum = 0
for i = 1, 200000 do sum = sum + list["key" .. i] end
print(sum)
