/*
 * Animation: the fields of a bitmap that make it a frame, and the playback that composes the frames of a list onto
 * one bitmap.
 *
 * A playback has no timer and no thread. Its owner calls Z_ProcessPlayback again and again, paints what
 * Z_GetPlaybackUpdateRect tells, and sleeps as long as Z_GetPlaybackDelay says. Frames can be added, and their rows told
 * to be there, while it plays. All its functions return Z_ERROR_ARGUMENT for a null playback, and for null outputs that
 * are not told to be optional, with nothing changed. A playback belongs to one thread.
 */
#ifndef ZKR13N_PLAYBACK_H
#define ZKR13N_PLAYBACK_H

#include "bitmap.h"
#include "lists.h"

Z_BEGIN_DECLS

/*
 * Passes on what makes a bitmap a frame of an animation: position, delay, disposal, the flags for
 * transparency and for waiting, and the colours of background and transparency, translated to the
 * destination's palette (Z_TranslateBitmapColor).
 *
 * destination    in, changed: an initialised record
 * source         in: an initialised record
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT when either is null.
 */
Z_API ReturnCode Z_CALL Z_CopyPlaybackParms(BitmapHandle* destination, const BitmapHandle* source);

/* A playback, as Z_CreatePlayback makes it. */
typedef struct PlaybackHandle__* PlaybackHandle;

/* What a playback does next, or waits for. */
enum {
    PlaybackClear = 0,          /* the canvas is about to be cleared */
    PlaybackCleared = 1,        /* it has been */
    PlaybackRender = 2,         /* a frame is about to be drawn */
    PlaybackAwaitLines = 3,     /* it is the last one, and not all of its rows are there */
    PlaybackRendered = 4,       /* it has been drawn */
    PlaybackWaitInput = 5,      /* waits for input, which Z_CancelPlaybackWait tells */
    PlaybackWaitDelay = 6,      /* waits until the frame's delay is over */
    PlaybackWaitDelayInput = 7, /* waits for either */
    PlaybackDispose = 8,        /* the frame is about to be disposed of */
    PlaybackDisposed = 9,       /* it has been */
    PlaybackEnd = 10 /* the list is at its end; the next step begins anew, on the canvas as it is */
};

/* Values of BitmapHandle.DisposalMethod; others do nothing. */
enum {
    PLAYBACK_DISPOSE_NONE = 0,
    PLAYBACK_DISPOSE_LEAVE = 1,
    PLAYBACK_DISPOSE_BACKGROUND = 2, /* the frame's place gets the canvas' background */
    PLAYBACK_DISPOSE_PREVIOUS = 3    /* it gets back what was there before the frame */
};

/*
 * Makes a playback.
 *
 * playback    out: set to 0 first
 * target      in: an allocated bitmap, the canvas. It stays the caller's, is drawn on, and must outlive the playback.
 * frames      in, may be null for a new empty list: the frames. The playback uses the list until it is destroyed.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a target that is null or not allocated; Z_ERROR_MEMORY.
 */
Z_API ReturnCode Z_CALL Z_CreatePlayback(PlaybackHandle* playback, BitmapHandle* target, BitmapList frames);

/*
 * Ends a playback.
 *
 * playback    in
 * frames      out, may be null: the list, with its bitmaps, which the caller owns from now on
 *
 * Returns Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_DestroyPlayback(PlaybackHandle playback, BitmapList* frames);

/*
 * Goes one step on: clears the canvas, draws a frame, looks at the clock, or disposes of a frame. It never waits. A frame of
 * another depth, order or palette is brought to the canvas' form for drawing (Z_ColorResBitmap); pixels of the
 * transparent colour of a frame that has one, and pixels outside its region, are left out. Drawing reports to the
 * status callback as Z_ColorResBitmap and Z_CombineBitmap do.
 *
 * playback    in
 * state       out, may be null: the new state
 *
 * Returns Z_SUCCESS, also where a frame cannot be drawn, which is then passed over.
 */
Z_API ReturnCode Z_CALL Z_ProcessPlayback(PlaybackHandle playback, uint32_t* state);

/* Ends a wait, whatever for: the next step disposes of the frame. Any other state stays. Returns Z_SUCCESS. */
Z_API ReturnCode Z_CALL Z_CancelPlaybackWait(PlaybackHandle playback);

/* Tell the state, and the number of the current frame: -1 before the first one. Return Z_SUCCESS. */
Z_API ReturnCode Z_CALL Z_GetPlaybackState(PlaybackHandle playback, uint32_t* state);
Z_API ReturnCode Z_CALL Z_GetPlaybackIndex(PlaybackHandle playback, int32_t* index);

/*
 * Tells how long the frame still stays.
 *
 * milliseconds    out: 0 outside the two states that wait for a delay
 *
 * Returns Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_GetPlaybackDelay(PlaybackHandle playback, uint32_t* milliseconds);

/*
 * Tells what has changed on the canvas.
 *
 * rectangle    out, may be null: the smallest rectangle around all changes since it was last cleared, in stored rows and
 *              columns of the canvas
 * clear        in: not 0 to clear it
 *
 * Returns Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_GetPlaybackUpdateRect(PlaybackHandle playback, RECT* rectangle, int32_t clear);
Z_API ReturnCode Z_CALL Z_ClearPlaybackUpdateRect(PlaybackHandle playback);

/*
 * Goes to a frame, through all frames before it, so that the canvas holds what it has to; none of them is waited for.
 * Going back begins anew. Rows that are still missing are waited for no longer.
 *
 * index    in: -1 for before the first frame, to the number of frames for the end
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT for another index.
 */
Z_API ReturnCode Z_CALL Z_SetPlaybackIndex(PlaybackHandle playback, int32_t index);

/*
 * Adds a frame whose rows are still to come. It is not drawn before Z_ValidatePlaybackLines has told of all of them, as
 * long as it is the last one.
 *
 * playback    in
 * frame       in: the record, which the list owns from now on
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null frame; Z_ERROR_MEMORY, with no frame added.
 */
Z_API ReturnCode Z_CALL Z_AppendPlayback(PlaybackHandle playback, const BitmapHandle* frame);

/*
 * Tells that rows of the frame added last are there.
 *
 * row, count    in: rows outside the frame, and such as were told of before, play no part
 *
 * Returns Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_ValidatePlaybackLines(PlaybackHandle playback, int32_t row, int32_t count);

Z_END_DECLS

#endif
