-- Composites a figure over a new background with each of six keyers, all on one sheet:
-- krlimage run -o out examples/greenscreen.ls FIGURE BACKGROUND SHEET

on main args
  figure = image(args[1])
  place = image(args[2])
  grader = new(xtra "KRLImageXtra")
  grader.krlImageCreateLookupTables(#mt)

  keys = [#chroma, #hue, #difference, #extended, #automatic, #charger]
  w = place.width / 2
  h = place.height / 2
  sheet = image(w * 2, h * 3, 32)
  repeat with i = 1 to keys.count
    finished = composed(grader, figure, place, keys[i])
    x = (i - 1) mod 2 * w
    y = (i - 1) / 2 * h
    sheet.copyPixels(finished, rect(x, y, x + w, y + h), finished.rect)
  end repeat

  grader.krlImageDestroyLookupTables()
  sheet.save(args[3])
end

-- Keys the figure, removes the spill of the green screen and composites it over the background.
on composed grader, figure, place, key
  cutout = figure.duplicate()
  grader.krlImageLoad(cutout)
  put key && keyed(grader, key)
  grader.krlImageSpillSupression(#green, #extended, 255)
  grader.krlImageQuit()

  finished = place.duplicate()
  grader.krlImageLoad(finished)
  grader.krlImageComposite(cutout, #normal, #background_alpha_yes)
  grader.krlImageQuit()
  return finished
end

on keyed grader, key
  backing = rgb(45, 170, 80)
  if key = #chroma then
    return grader.krlImageChromaKey(120, 25, 20, 0.8, 35, 25, 0.7, 30, 15, #keep, #true)
  else if key = #hue then
    -- Hue alone would remove everything greenish, so restore what is much less saturated or much
    -- darker than the green screen.
    grader.krlImageHueKey(backing, 0.2, 60, 200, #keep, #true)
    grader.krlImageSaturationKey(backing, 0.5, 80, 200, #remove, #false)
    return grader.krlImageValueKey(backing, 0.6, 160, 220, #remove, #false)
  else if key = #difference then
    return grader.krlImageColourDifference(#green, 20, 60, #keep, #false)
  else if key = #extended then
    return grader.krlImageColourDifferenceExtended(#green, 0.5, 0.2, 0.4, 0.3, #keep, #false)
  else if key = #automatic then
    return grader.krlImageAutoColorDifference(#auto, 0.2, 0.25, 0.5)
  else
    return grader.krlImageAutoColorDifferenceCharger(#auto, 0.2, 0.25, 0.5, #keep, #false)
  end if
end
