-- Strings: comparison without case, concatenation, chunks to read, to write and to delete.
on main
  put "Hello" = "hELLO", "a" < "B", "abc" contains "BC", "abc" starts "AB", "abc" starts "b"
  put "1" = 1, "1.50" = 1.5, #Sym = "sym", "" = EMPTY
  put "a" & "b", "a" && "b", 1 & 2.5 & #x & VOID & "!"
  put "quote" & QUOTE & "d", "tab" & TAB & "bed"
  put "two" & RETURN & "lines"
  s = "The quick, brown fox" & RETURN & "jumps, over"
  put char 1 of s, char 5 to 9 of s, word 2 of s, word 2 to 3 of s
  put item 1 of s, item 2 of s, line 2 of s
  put the last word of s, the last char of s, the last item of s
  put the number of chars in "abc", the number of words in s, the number of items in s, the number of lines in s
  put s.char[5], s.word[1..2], s.line[2].word[1], s.item.count, s.word.count, s.char.count, s.length
  put word 1 of line 2 of s, char 9 of "abc", word 0 of "a b"
  the itemDelimiter = ":"
  put item 2 of "a:b:c", the itemDelimiter
  the itemDelimiter = ","
  put "new" into word 2 of s
  put s
  put "x" into item 4 of t1()
end

on t1
  return "unused"
end
