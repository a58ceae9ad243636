local s = ("abcdefghij"):rep(65536)
local count = 0
for i = 1, #s do
  if s:sub(i, i) == "c" then count = count + 1 end
end
print(count)
