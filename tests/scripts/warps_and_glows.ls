-- What warps, composites and glows answer, and in which order they find a fault.
on main
  x = new(xtra "KRLImageXtra")
  x.krlImageCreateLookupTables(#mt)
  back = image(3, 2, 32)
  back.fill(back.rect, rgb(100, 100, 100))
  front = image(3, 2, 32)
  front.fill(front.rect, rgb(200, 40, 0))
  small = image(2, 2, 32)
  put x.krlImageTwirl(5, #bilinear, #RGBA), x.krlImageComposite(front, #add, #background_alpha_no)
  x.krlImageLoad(back)

  -- Each symbol of a warp is compared before the next argument is read.
  put x.krlImageWaves(1, 2, 0, 0, 100, 100, #other, 1, 1), x.krlImageWaves(1, 2, 0, 0, 100, 100, #wrap, #other, 1)
  put x.krlImageWaves(1, 2, 0, 0, 100, 100, #wrap, #standard, 1)
  put x.krlImageWaves(1, 2, 0, 0, 100, 100, #wrap, #standard, #Single)
  put x.krlImageBlockWaves(1, 2, 0, 0, #other, 1), x.krlImageBlockWaves(1, 2, 0, 0, #bilinear, #other)
  put x.krlImageCircularWaves(1, 2, 0, 5, #other, 1), x.krlImageCircularWaves(1, 2, 0, point(1, 1), #other, 1)
  put x.krlImageTwirl(1.5, #other, 1), x.krlImageTwirl(1, #other, 1), x.krlImageTwirl(1, #standard, #other)

  -- A composite compares its mode before it reads on, and looks at the picture last.
  put x.krlImageComposite(5, 1, 1), x.krlImageComposite(5, #pinlight, 1), x.krlImageComposite(5, #add, 1)
  put x.krlImageComposite(5, #add, #other), x.krlImageComposite(5, #add, #background_alpha_yes)
  put x.krlImageComposite(front, #add, #background_alpha_yes), back.getPixel(0, 0)
  put x.krlImageComposite(front, #noBlend, #background_alpha_no), back.getPixel(2, 1)

  -- The glows read everything first.
  put x.krlImageGleamBlurComposite(front, #other, 255, 0, 255, 0, #other, 0.0, 255, [:], 1)
  put x.krlImageGleamBlurComposite(front, #other, 255, 0, 255, 0, #other, 0.0, 255, [:], #other)
  put x.krlImageGleamBlurComposite(front, #normal, 255, 0, 255, 0, #other, 0.0, 255, [:], #other)
  put x.krlImageGleamBlurComposite(front, #normal, 255, 0, 255, 0, #noBlend, 0.0, 255, 5, #from_image)
  put x.krlImageGleamBlurComposite(front, #normal, 255, 0, 255, 0, #noBlend, 0.0, 255, [1: 2], #from_image)
  put x.krlImageGleamBlurComposite(5, #normal, 255, 0, 255, 0, #noBlend, 0.0, 255, [:], #from_image)
  put x.krlImageGleamBlurComposite(front, #normal, 255, 0, 255, 0, #noBlend, 0.0, 255, [:], #from_image)
  put back.getPixel(1, 1)
  put x.krlImageGleamZoomComposite(front, 1, 255, 0, 255, point(1, 1), 1.0, 0.5, #add, 0.0, 255, [:], #from_image, #standard, 5)
  put x.krlImageGleamZoomComposite(front, #normal, 1.5, 0, 255, point(1, 1), 1.0, 0.5, #add, 0.0, 255, [:], #from_image, #standard, 5)
  put x.krlImageGleamZoomComposite(front, #noBlend, 255, 0, 255, point(1, 1), 1.0, 0.5, #add, 0.0, 255, [:], #from_image, 1, 1)
  put x.krlImageGleamZoomComposite(front, #normal, 255, 0, 255, point(1, 1), 1.0, 0.5, #noBlend, 0.0, 255, [:], #from_image, 1, 1)
  put x.krlImageGleamZoomComposite(front, #normal, 255, 0, 255, point(1, 1), 1.0, 0.5, #add, 0.0, 255, [:], #other, 1, 1)
  put x.krlImageGleamZoomComposite(front, #normal, 255, 0, 255, point(1, 1), 1.0, 0.5, #add, 0.0, 255, [:], #from_image, #bilinear, "x")
  put x.krlImageGleamZoomComposite(front, #normal, 255, 0, 255, point(1, 1), 1.0, 0.5, #add, 0.0, 255, [:], #from_image, #bilinear, 5)
  put x.krlImageGleamZoomComposite(front, #normal, 255, 0, 255, point(1, 1), 1.0, 0.5, #add, 0.0, 255, [:], #from_image, #standard, 0)
  put x.krlImageLightSpillComposite(front, 2, #noBlend), x.krlImageLightSpillComposite(front, 0, #screen)
  put back.getPixel(0, 1)
  put x.krlImageOuterGlow(0, 0, 0, [:], [:], 255, 0, 1), x.krlImageOuterGlow(0, 0, 0, [:], [:], 255, 0, #other)
  put x.krlImageOuterGlow(0, 0, 0, [0: rgb(1, 2, 3)], [:], 255, 0, #other)
  put x.krlImageOuterGlow(0, 0, 0, [0: rgb(1, 2, 3)], [0: rgb(9, 8, 7)], 255, 0, #other)
  put x.krlImageOuterGlow(0, 0, 0, [0: rgb(1, 2, 3)], [0: rgb(9, 8, 7)], 255, 0, #standard), back.getPixel(0, 0)

  put x.krlImageDisplacementMapComposite(front, #same_as_map_one, front, #other, 1.0, 1.0, #other)
  put x.krlImageDisplacementMapComposite(front, #red, front, #other, 1.0, 1.0, #other)
  put x.krlImageDisplacementMapComposite(front, #red, front, #same_as_map_one, 1.0, 1.0, #other)
  put x.krlImageDisplacementMapComposite(front, #red, front, #same_as_map_one, 1.0, 1.0, #wrap)

  -- A run that fails leaves the second picture locked, as the one before anything was loaded did, too.
  put x.krlImageComposite(small, #add, #background_alpha_yes)
  x.krlImageQuit()
  x.krlImageDestroyLookupTables()
end
