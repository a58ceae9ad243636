s = "abcdefghij" * 65536
count = 0
for i in range(len(s)):
    if s[i] == "c":
        count += 1
print(count)
