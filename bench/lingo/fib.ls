on main
  put fib(27)
end

on fib n
  if n < 2 then return n
  return fib(n - 1) + fib(n - 2)
end
