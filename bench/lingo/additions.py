def main():
    total = 0
    for i in range(1, 3000001):
        total = total + i % 7
    print(total)


main()
