class Adder:
    def __init__(self):
        self.sum = 0

    def add(self, number):
        self.sum = (self.sum + number) % 1000003


o = Adder()
for i in range(1, 500001):
    o.add(i)
print(o.sum)
