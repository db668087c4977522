/*
 * Reads and writes portable pictures (PBM, PGM, PPM in their binary forms), so that the examples need no other library; they end
 * with a message where something fails. Rows of these files are those of a bitmap already, but for two things: black is 1 in a
 * PBM, which the palette of the bitmap says, and samples of more than 8 bits have their high byte first.
 */
#ifndef PORTABLE_PICTURE_H
#define PORTABLE_PICTURE_H

#include <stdio.h>
#include <zkr13n.h>

/* End the program: on any result but success, and at once. */
void Check(ReturnCode code, const char* what);
void Fail(const char* path, const char* why);

/* Opens a picture of one kind ('4': 1 bit, '5': gray, '6': colour) and reads its header. */
FILE* OpenPicture(const char* path, char kind, int* width, int* height, int* maximum);

/* A bitmap of 1 bit, 8-bit gray or 24 bits, by the kind of the file; memoryType is one of zkr13n/storage.h. */
BitmapHandle ReadPicture(const char* path, char kind, int memoryType);

/* Writes a bitmap of these depths, its row 0 at the top. */
void WritePicture(const char* path, BitmapHandle* bitmap);

#endif
