def main():
    s = ""
    for i in range(1, 500001):
        s += "piece" + str(i)
    print(len(s))


main()
