table = {}
for i in range(1, 200001):
    table["key" + str(i)] = i
print(sum(table["key" + str(i)] for i in range(1, 200001)))
