s = "abcdefghij" * 8192
count = 0
for i in range(len(s)):
    if s[i] == "c":
        count += 1
print(count)
