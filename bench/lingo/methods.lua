local Adder = {}
Adder.__index = Adder
function Adder:add(number) self.sum = (self.sum + number) % 1000003 end
local o = setmetatable({sum = 0}, Adder)
for i = 1, 500000 do o:add(i) end
print(o.sum)
