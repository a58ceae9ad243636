local sum = 0
for i = 1, 3000000 do sum = sum + i % 7 end
print(sum)
