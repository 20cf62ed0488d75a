#pragma once
// A JPEG decoder of our own for pictures embedded in imported RTF: baseline and extended
// sequential as well as progressive Huffman-coded pictures with 8-bit samples, one component
// (grey) or three (YCbCr, or RGB when an Adobe marker says so), any sampling factors, restart
// intervals. Arithmetic coding, 12-bit samples, lossless and hierarchical pictures and four-
// component (CMYK) pictures are refused. Hostile input cannot make it allocate beyond a fixed
// multiple of its size or loop without end: every scan walks a picture-sized grid once.
#include "Shared/RichText/RgbImage.h"

#include <string>
#include <string_view>

// False, with `failure` naming why, when the data is not a JPEG picture this decoder handles.
bool DecodeJpeg(std::string_view data, SRgbImage& image, std::u16string& failure);
