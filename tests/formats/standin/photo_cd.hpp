// A stand-in for the Photo CD access library: it records the calls and answers as it is told.
#pragma once

#include <kirvo.h>

struct PhotoCdStandIn {
    // What each function answers.
    uint32_t open, read_image_info, set_progress, get_rotation, set_transform, set_resolution,
        load_image, close;
    void* photo;      // the handle that PCDopen gives out
    int32_t rotation; // what PCDgetRotation stores
    HGLOBAL image;    // what PCDloadImage hands over
    char calls[1000]; // "PCDopen(name) PCDreadImageInfo(7) ..."
};

using PhotoCdStandInFunction = PhotoCdStandIn*(WINAPI*)();
