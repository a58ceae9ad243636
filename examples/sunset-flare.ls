-- Adds a lens flare to the low sun in a picture: krlimage run sunset-flare.ls IN OUT
--
-- A flare is a list of elements, painted in order. Glow, rays and streaks surround the sun; the ghosts
-- of the lens line up from the sun through the picture. For another picture, move `sun` and `far`;
-- everything else follows.

on main names
  picture = image(names[1])
  sun = point(491, 238)
  far = point(250, 590)

  flare = [:]
  addLight(flare, sun)
  addStreaks(flare, sun)
  addRings(flare, sun, far)
  addGhosts(flare, sun, far)

  grade = new(xtra "KRLImageXtra")
  grade.krlImageCreateLookupTables(#mt)
  grade.krlImageLoad(picture)
  put count(flare) && "elements"
  put grade.krlImageLensFlare(flare)
  grade.krlImageQuit()
  grade.krlImageDestroyLookupTables()
  picture.save(names[2])
end

-- The sun itself: a wide warm bloom, a tight white core, and fine rays.
on addLight flare, sun
  bloom = [0: rgb(70, 8, 0), 30: rgb(200, 70, 20), 70: rgb(255, 170, 80), 100: rgb(255, 240, 215)]
  flare.addProp(#gradientCircle, [#origin: sun, #radius: 420.0, #brightness: 135.0, \
    #transparency: 0, #colourList: bloom, #blendMethod: #screen])
  flare.addProp(#gradientCircle, [#origin: sun, #radius: 130.0, #brightness: 255.0, \
    #transparency: 0, #colourList: [0: rgb(255, 150, 60), 100: rgb(255, 255, 250)], #blendMethod: #screen])
  flare.addProp(#spike, [#count: 130, #angle: 0.0, #brightness: 34.0, #radius: 250.0, #origin: sun, \
    #seed: 21, #transparency: 0, #colourList: [0: rgb(255, 190, 120)], #blendMethod: #screen])
  flare.addProp(#randomFan, [#count: 46, #angle: 128.0, #brightness: 26.0, #radius: 360.0, #aperture: 50, \
    #origin: sun, #seed: 8, #transparency: 0, #colourList: [0: rgb(255, 170, 90)], #blendMethod: #screen])
  flare.addProp(#star, [#count: 6, #width: 1, #angle: 17.0, #brightness: 150.0, #radius: 330.0, \
    #origin: sun, #transparency: 0, #colourList: [0: rgb(255, 214, 160)], #blendMethod: #screen])
end

-- Streaks across the frame, as an anamorphic lens draws them: a broad warm one with a thin blue one inside.
on addStreaks flare, sun
  flare.addProp(#starCaustic, [#length: 1700.0, #thickness: 90.0, #angle: 0.0, #origin: sun, \
    #brightness: 200.0, #transparency: 0, #colourList: [0: rgb(255, 120, 50)], #blendMethod: #screen])
  flare.addProp(#line, [#length: 1100.0, #thickness: 7.0, #angle: -90.0, #origin: sun, \
    #brightness: 225, #transparency: 0, #colourList: [0: rgb(170, 205, 255)], #blendMethod: #screen])
end

-- Haloes: a thin rainbow close to the sun, a wide one that fades towards the edge of the frame, and an
-- arc of colour on the far side.
on addRings flare, sun, far
  halo = [0: rgb(30, 60, 255), 35: rgb(40, 200, 160), 65: rgb(255, 210, 80), 100: rgb(255, 90, 40)]
  flare.addProp(#outlinedCircle, [#origin: sun, #radius: 168.0, #outerThickness: 1.0, \
    #innerThickness: 0.0, #outerFeather: 10.0, #innerFeather: 26.0, #brightness: 84.0, #transparency: 0, \
    #colourList: halo, #blendMethod: #screen])
  flare.addProp(#fadedCircle, [#origin: along(sun, far, 0.22), #radius: 255.0, #outerThickness: 0.0, \
    #innerThickness: 0.0, #outerFeather: 8.0, #innerFeather: 46.0, #brightness: 22.0, #transparency: 0, \
    #colourList: halo, #blendMethod: #screen])
  flare.addProp(#chromaHoop, [#position: 1.0, #angle: 0.0, #apogeeScale: 1.0, #softness: 0.93, \
    #chromaSpread: 1.0, #density: 0.0015, #noise: 0.2, #arcCompleteness: 1.0, #seed: 5, \
    #brightness: 255.0, #transparency: 190, #origin: along(sun, far, 0.78), #handle: along(sun, far, 0.66), \
    #colourList: [0: rgb(255, 60, 30), 45: rgb(80, 200, 90), 100: rgb(40, 60, 255)], #blendMethod: #screen])
end

-- The ghosts: six-sided images of the iris, each tinted by its lens coating.
on addGhosts flare, sun, far
  addGhost(flare, along(sun, far, 0.30), 17.0, 84.0, 3, rgb(255, 190, 110))
  addGhost(flare, along(sun, far, 0.37), 8.0, 140.0, 2, rgb(255, 235, 200))
  addGhost(flare, along(sun, far, 0.48), 44.0, 66.0, 4, rgb(90, 230, 170))
  addGhost(flare, along(sun, far, 0.58), 24.0, 84.0, 3, rgb(255, 130, 60))
  addGhost(flare, along(sun, far, 0.93), 74.0, 62.0, 5, rgb(110, 150, 255))
  addGhost(flare, along(sun, far, 1.12), 34.0, 76.0, 4, rgb(200, 110, 255))
  addGhost(flare, along(sun, far, -0.42), 58.0, 46.0, 5, rgb(120, 220, 200))
  addGhost(flare, along(sun, far, -0.56), 26.0, 62.0, 3, rgb(255, 160, 90))
  -- One round ghost from a second reflection.
  flare.addProp(#filledCircle, [#origin: along(sun, far, 0.70), #radius: 9.0, #outerFeather: 7.0, \
    #brightness: 90.0, #transparency: 0, #colourList: [0: rgb(190, 255, 200)], #blendMethod: #screen])
end

on addGhost flare, place, size, light, softness, tint
  flare.addProp(#polyshape, [#count: 6, #angle: 17.0, #brightness: light, #radius: size, \
    #expandshape: 0, #shapeBlur: softness, #origin: place, #transparency: 0, \
    #colourList: [0: tint], #blendMethod: #screen])
end

-- The point at `part` of the way from `a` to `b`.
on along a, b, part
  return point(integer(a.locH + (b.locH - a.locH) * part), integer(a.locV + (b.locV - a.locV) * part))
end
