-- Texts of members, whole and in chunks.
on main
  put "one two" & RETURN & "three" into member "page"
  put member("page").text.line.count, line 2 of member "page", member("page").word[2], member("page").char.count
  put the number of words in member "page", the last word of field "page", member("page").line[1].word[1]
  put "!" after member "page"
  put ">" before member "page" of castLib 1
  put member("page").line[2], member "page"
  put "2" into word 2 of member "page"
  member("page").line[2] = "last"
  put "st" after char 1 of word 1 of line 1 of field "page"
  delete char 1 of member "page"
  put member("page").text
  s = "abc"
  put member("page") into char 2 of s
  put s
  page = member("page")
  put page.word[1], char 1 of page
  page.text = "new"
  put field "page", page

  m = new(#bitmap)
  m.image = image(6, 4, 8, #grayscale)
  put m.useAlpha, m.palette, m.paletteRef, m.centerRegPoint, m.regPoint, m.fileName
  m.regPoint = point(1, 1)
  m.paletteRef = #web216
  m.useAlpha = FALSE
  put m.image.useAlpha, m.image.paletteRef, m.centerRegPoint
  m.crop(rect(0, 0, 3, 2))
  crop m, rect(0, 0, 2, 2)
  m.centerRegPoint = TRUE
  put m.rect, m.regPoint
  m.centerRegPoint = FALSE
  m.image = image(20, 20, 32)
  put m.regPoint
  page.char[1] = "N"
end
