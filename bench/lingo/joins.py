s = ""
for i in range(1, 100001):
    s = s + "piece" + str(i)
print(len(s))
