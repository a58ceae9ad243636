-- A picture that is not let go stays locked and alive, as scripts may rely on.
on main
  x = new(xtra "KRLImageXtra")
  x.krlImageCreateLookupTables(#st)
  put x.krlImageLoad(image(2, 2, 32))
  put x.krlImageBrightness(-55, #RGB)
  put x.krlImageDestroyLookupTables()
end
