/*
 * vorlane: finds how a scanned page lies in its picture, says how sure that is and why, and makes
 * the upright page.
 *
 *   vorlane_context *context;
 *   vorlane_finding finding;
 *   vorlane_finding_init(&finding, sizeof finding);
 *   if (vorlane_context_new(&context) != VORLANE_OK) ...
 *   if (vorlane_detect(context, &page, NULL, &finding) == VORLANE_OK &&
 *       vorlane_result_size(&page, &finding, NULL, &result.width, &result.height) == VORLANE_OK) {
 *     ... allocate result.pixels, set result.stride ...
 *     vorlane_apply(context, &page, &finding, NULL, &result);
 *   }
 *   vorlane_context_free(context);
 *
 * Ownership: every pixel belongs to the caller, those of the page and those of the result. The
 * library keeps nothing of an argument after a call. What it makes itself is a context, released
 * by vorlane_context_free; all texts are static.
 *
 * Threads: a context serves one call at a time; any number of threads work at a time with a context
 * each. There is no other state: neither between calls nor in the process.
 *
 * Nothing is printed, no C++ exception leaves, and a lack of memory is a status. A failed call
 * leaves results as they were, apart from pixels of a result that was begun and from what a
 * function says.
 *
 * Sized records begin with struct_size, the size that the caller was compiled with, which an init
 * function fills in. Later versions add fields behind those that there are; an older caller's
 * shorter records stay valid. Fields called reserved are 0.
 *
 * Coordinates are pixels, x to the right and y down; the middle of the first pixel is (0, 0), so a
 * page reaches from -0.5 to width - 0.5. Turns are degrees, clockwise as seen.
 *
 * This header is plain C (C99) and compiles alone in C and in C++.
 */
#ifndef VORLANE_VORLANE_H
#define VORLANE_VORLANE_H

#include <stddef.h>
#include <stdint.h>

/* The version of this header; vorlane_version gives the library's. */
#define VORLANE_VERSION_MAJOR 0
#define VORLANE_VERSION_MINOR 1
#define VORLANE_VERSION_PATCH 0
#define VORLANE_VERSION_NUMBER \
  (VORLANE_VERSION_MAJOR * 10000 + VORLANE_VERSION_MINOR * 100 + VORLANE_VERSION_PATCH)
#define VORLANE_VERSION_STRING "0.1.0"

#if defined(__GNUC__) && !defined(_WIN32)
#define VORLANE_API __attribute__((visibility("default")))
#else
#define VORLANE_API
#endif

#if defined(__cplusplus)
#define VORLANE_NOEXCEPT noexcept
extern "C" {
#else
#define VORLANE_NOEXCEPT
#endif

/* What every operation returns. Codes keep their numbers. */
typedef int32_t vorlane_status;
enum {
  VORLANE_OK = 0,
  VORLANE_BAD_ARGUMENT = 1,     /* a null pointer, or a struct_size that no version had */
  VORLANE_BAD_IMAGE = 2,        /* a size below 1, an unknown format, or a stride below a row */
  VORLANE_BAD_OPTION = 3,       /* an option out of its range */
  VORLANE_BAD_FINDING = 4,      /* of another page, not a number, or a cut that holds nothing of it
                                    or whose middle lies off the picture */
  VORLANE_TOO_LARGE = 5,        /* an edge over VORLANE_MAX_EDGE pixels, or over 2^31 - 1 bytes */
  VORLANE_TURN_TOO_LARGE = 6,   /* the turn goes beyond the option max_turn */
  VORLANE_RESULT_TOO_LARGE = 7, /* the result goes beyond the option max_growth */
  VORLANE_RESULT_TOO_SMALL = 8, /* the caller's memory does not hold the result */
  VORLANE_NOT_CONFIDENT = 9,    /* the finding is less sure than the option min_confidence asks */
  VORLANE_NO_MEMORY = 10,
  VORLANE_BUSY = 11,    /* another thread is using the context */
  VORLANE_INTERNAL = 12 /* a fault of the library */
};

/* The longest edge of a page, in pixels: squares of longer ones leave the stages' 32 bits. */
enum { VORLANE_MAX_EDGE = 46340 };

/* How pixels are stored. Rows begin with a whole byte. */
enum {
  VORLANE_BIT_LIGHT = 1, /* 8 pixels a byte, the first one in the highest bit; a set bit is light */
  VORLANE_BIT_DARK = 2,  /* the same; a set bit is dark, as fax pages and PBM files have it */
  VORLANE_GREY8 = 3,     /* a byte a pixel, 0 is black */
  VORLANE_BGR24 = 4,     /* three bytes a pixel: blue, green, red */
  VORLANE_RGB24 = 5,     /* red, green, blue */
  VORLANE_BGRX32 = 6,    /* four bytes a pixel; the fourth is not read, and 255 in results */
  VORLANE_RGBX32 = 7
};

/* A page in the caller's memory, which is only read. */
typedef struct vorlane_image {
  const uint8_t* pixels; /* the first byte of the top row */
  ptrdiff_t stride;      /* bytes from a row to the one below it; negative where rows lie bottom
                            first. At least vorlane_row_bytes either way. What lies between the
                            end of a row and the next one may be read, and is not used */
  int32_t width;         /* pixels */
  int32_t height;        /* rows */
  int32_t format;        /* VORLANE_BIT_LIGHT .. VORLANE_RGBX32 */
} vorlane_image;

/* The caller's memory for an upright page, in the format of the page it is made of. */
typedef struct vorlane_result {
  uint8_t* pixels;  /* the first byte of the top row; no byte of the page's rows */
  ptrdiff_t stride; /* as a page's. Bytes between the rows are not written; the bits behind the
                       last pixel of a row of bits take the fill */
  int32_t width;  /* in: columns and rows that there is room for; out: those of the result. With */
  int32_t height; /* VORLANE_RESULT_TOO_SMALL: those that it needs */
} vorlane_result;

/* How far an answer may be trusted, in the order of trust. */
enum {
  VORLANE_REFUSED = 0,  /* nothing speaks: there is no answer */
  VORLANE_DOUBTFUL = 1, /* an answer that nobody should act on unseen */
  VORLANE_LIKELY = 2,
  VORLANE_SURE = 3
};

/* Evidence that can speak for a turn: places in vorlane_finding.evidence and, as 1 << place, bits
 * of vorlane_finding.by. */
enum {
  VORLANE_TOP_SIDE = 0,
  VORLANE_RIGHT_SIDE = 1,
  VORLANE_BOTTOM_SIDE = 2,
  VORLANE_LEFT_SIDE = 3,
  VORLANE_PRINT = 4,
  VORLANE_BAR = 5,  /* the long printed bar of a form */
  VORLANE_VOTE = 6, /* the vote of the page's borders */
  VORLANE_EVIDENCE_KINDS = 7
};

/* What became of one piece of evidence. */
enum {
  VORLANE_NOT_LOOKED_AT = 0,
  VORLANE_UNSEEN = 1,    /* looked for and not there */
  VORLANE_BELIEVED = 2,  /* speaks for the turn that was given */
  VORLANE_DISAGREES = 3, /* speaks for another turn */
  VORLANE_TOO_WEAK = 4,
  VORLANE_FRAME = 5 /* it is the picture's own frame, not the page's side */
};

/* Why an answer is what it is; vorlane_reason_name, _text and _unit put it in words. */
enum {
  VORLANE_REASON_NONE = 0,
  VORLANE_REASON_SIDES_AND_PRINT_AGREE = 1,
  VORLANE_REASON_SIDES_AGREE = 2,
  VORLANE_REASON_PRINT_ALONE = 3,
  VORLANE_REASON_BAR_AGREES = 4,
  VORLANE_REASON_ASKED_FOR = 5, /* the caller chose the evidence */
  VORLANE_REASON_PRINT_OFF_PAPER = 6,
  VORLANE_REASON_PRINT_TOO_STEEP = 7,
  VORLANE_REASON_SIDES_AND_PRINT_DIFFER = 8,
  VORLANE_REASON_ONLY_RIM_SEEN = 9,
  VORLANE_REASON_SEVERAL_DIRECTIONS = 10,
  VORLANE_REASON_CURVED_SIDES = 11,
  VORLANE_REASON_SIDES_NOT_PARALLEL = 12,
  VORLANE_REASON_FEW_SIDES = 13,
  VORLANE_REASON_WEAK_PRINT = 14,
  VORLANE_REASON_NOTHING_SEEN = 15,
  VORLANE_REASON_NO_CONTRAST = 16,
  VORLANE_REASON_TOO_SMALL = 17,
  VORLANE_REASON_TOO_STEEP = 18,
  VORLANE_REASON_PRINT_OUTSIDE_CUT = 19,
  VORLANE_REASON_LIGHT_OUTSIDE_CUT = 20,
  VORLANE_REASON_SIDE_UNSEEN = 21,
  VORLANE_REASON_SIDE_RUNS_OFF_FRAME = 22,
  VORLANE_REASON_CUT_WIDENED = 23,
  VORLANE_REASON_KEPT_WHOLE = 24,
  VORLANE_REASON_NOT_TURNED = 25,
  VORLANE_REASON_BELOW_CONFIDENCE = 26,
  VORLANE_REASON_NO_BAR = 27 /* that was to stand straight */
};

typedef struct vorlane_point {
  double x;
  double y;
} vorlane_point;

typedef struct vorlane_evidence {
  double turn;     /* the turn it speaks for; 0 where unseen */
  double strength; /* 0..1: how straight and complete a side is; the print's confidence over 10 */
  int32_t verdict; /* VORLANE_NOT_LOOKED_AT .. VORLANE_FRAME */
  int32_t reserved;
} vorlane_evidence;

typedef struct vorlane_reason {
  int32_t code; /* VORLANE_REASON_NONE .. */
  int32_t reserved;
  double value; /* in the reason's unit; 0 where it has none */
} vorlane_reason;

enum { VORLANE_EVIDENCE_ROOM = 12, VORLANE_REASON_ROOM = 16 };

/*
 * What was found on a page. Plain data, nothing to release; may be copied, kept and edited: apply
 * reads the page's size, both confidences, the turn and the corners, and nothing else.
 */
typedef struct vorlane_finding {
  uint32_t struct_size;
  int32_t page_width; /* of the page that it was found on */
  int32_t page_height;
  int32_t turn_confidence;  /* VORLANE_REFUSED .. VORLANE_SURE: may the page be turned */
  int32_t cut_confidence;   /* may it be cut out; below what is asked for it is kept whole */
  uint32_t by;              /* the evidence that agreed on the turn */
  double turn;              /* the turn that sets the page upright */
  double expected;          /* share of right answers that the published table gives for evidence of
                               this kind, 0..1 */
  vorlane_point corners[4]; /* of the cut, in the picture: upper left of the upright page, upper
                               right, lower right, lower left. May lie outside the picture */
  vorlane_evidence evidence[VORLANE_EVIDENCE_ROOM]; /* the first VORLANE_EVIDENCE_KINDS */
  int32_t reason_count;
  int32_t reserved;
  vorlane_reason reasons[VORLANE_REASON_ROOM]; /* the first reason_count, the most telling first */
} vorlane_finding;

/* Which evidence is to stand straight where print and paper differ. */
enum { VORLANE_BY_AUTO = 0, VORLANE_BY_PAPER = 1, VORLANE_BY_PRINT = 2, VORLANE_BY_BAR = 3 };

/* What the cut keeps: the sheet, what is on it, or the whole picture. */
enum { VORLANE_CROP_PAPER = 0, VORLANE_CROP_CONTENT = 1, VORLANE_CROP_NONE = 2 };

/* How vorlane_detect looks. */
typedef struct vorlane_detect_options {
  uint32_t struct_size;
  int32_t by;             /* VORLANE_BY_AUTO */
  int32_t crop;           /* VORLANE_CROP_PAPER */
  int32_t min_confidence; /* VORLANE_DOUBTFUL; answers below it are refused */
  int32_t is_form;        /* 0; 1: the page carries a long printed bar, look for it */
  int32_t has_no_mount; /* 0; 1: nothing lies under the sheet, so four sides that agree are believed
                           without a look at the print, which is faster */
  double max_turn;      /* 45.0; a page that lies steeper is left alone; 0..45 */
  double min_turn;      /* 0.05; a page that lies straighter is not turned; 0..45 */
  double margin;        /* 0.0 pixels kept around the cut; negative trims */
} vorlane_detect_options;

/* How output pixels are sampled. Pages of bits always take the nearest pixel. */
enum { VORLANE_NEAREST = 0, VORLANE_BILINEAR = 1, VORLANE_BICUBIC = 2 };

/* How vorlane_apply makes a page. */
typedef struct vorlane_apply_options {
  uint32_t struct_size;
  int32_t interpolation; /* VORLANE_BICUBIC */
  int32_t
      quarter_turns;  /* 0..3, clockwise, after the page stands upright; every pixel as without */
  int32_t keep_whole; /* 0; 1: the page is turned and nothing is cut off */
  int32_t min_confidence; /* VORLANE_LIKELY; a finding with less is not applied, a cut with less not
                             cut */
  int32_t threads;        /* 1; 1..64: the calling one and those that are started for the call. The
                             result is the same */
  uint8_t
      fill[4]; /* 255, 255, 255: red, green and blue of what lies outside the picture; the fourth
                  is reserved. Grey pages take its luminance, pages of bits the nearer end */
  int32_t reserved;
  double margin;   /* 0.0 pixels, kept around the corners besides what they hold; negative trims */
  double min_turn; /* 0.05; a smaller turn is not made: the page is cut only, no pixel resampled */
  double max_turn; /* 45.0; a larger one is refused; 0..180 */
  double max_growth; /* 8.0; a result with more than so many times the page's pixels is refused */
} vorlane_apply_options;

/* Scratch memory of one thread's calls, kept from one to the next. */
typedef struct vorlane_context vorlane_context;

/*
 * Makes a context in *context; the caller releases it with vorlane_context_free.
 *
 * Returns VORLANE_OK; VORLANE_BAD_ARGUMENT for a null pointer; VORLANE_NO_MEMORY. *context is null
 * on failure.
 */
VORLANE_API vorlane_status vorlane_context_new(vorlane_context** context) VORLANE_NOEXCEPT;

/* Releases a context that no call is using; a null one is passed over. */
VORLANE_API void vorlane_context_free(vorlane_context* context) VORLANE_NOEXCEPT;

/*
 * Gives back the scratch memory that a context keeps: three bytes a pixel of the largest page of 32
 * bits that it has turned, one byte a pixel of the largest page but grey ones that it has looked
 * at, one bit a pixel of the largest VORLANE_BIT_DARK page, and a few tables. The next call takes
 * what it needs.
 *
 * Returns VORLANE_OK; VORLANE_BAD_ARGUMENT for a null context; VORLANE_BUSY.
 */
VORLANE_API vorlane_status vorlane_context_trim(vorlane_context* context) VORLANE_NOEXCEPT;

/*
 * Fill a record with its defaults, those that the fields name; a finding holds no answer and no
 * page.
 *
 *   size  sizeof *record, as the caller was compiled
 *
 * Return VORLANE_OK; VORLANE_BAD_ARGUMENT for a null record or a size that no version had; it is
 * then unchanged.
 */
VORLANE_API vorlane_status vorlane_detect_options_init(vorlane_detect_options* options,
                                                       size_t size) VORLANE_NOEXCEPT;
VORLANE_API vorlane_status vorlane_apply_options_init(vorlane_apply_options* options,
                                                      size_t size) VORLANE_NOEXCEPT;
VORLANE_API vorlane_status vorlane_finding_init(vorlane_finding* finding,
                                                size_t size) VORLANE_NOEXCEPT;

/*
 * Makes a person's decision, or a kept one, into a finding that counts as sure.
 *
 *   finding       initialised
 *   width, height of the page it is for; 1..VORLANE_MAX_EDGE
 *   turn          the turn that sets the page upright; -180..180
 *   corners       four, in the order of vorlane_finding.corners; what is kept is the upright
 *                 rectangle around them. Null: the whole page
 *
 * Returns VORLANE_OK; VORLANE_BAD_ARGUMENT for a null finding or one that was not initialised;
 * VORLANE_BAD_FINDING for a number out of range. *finding is then unchanged.
 */
VORLANE_API vorlane_status vorlane_finding_decide(vorlane_finding* finding, int32_t width,
                                                  int32_t height, double turn,
                                                  const vorlane_point* corners) VORLANE_NOEXCEPT;

/*
 * Finds how the page lies in its picture.
 *
 *   context  that no other call is using
 *   page     only read
 *   options  null: the defaults
 *   finding  initialised; receives the answer
 *
 * That nothing can be said of a page is an answer: VORLANE_OK, with VORLANE_REFUSED and the
 * reasons. So is a doubtful one: look at turn_confidence before acting, or leave that to
 * vorlane_apply.
 *
 * Returns VORLANE_OK; VORLANE_BAD_ARGUMENT, VORLANE_BAD_IMAGE, VORLANE_BAD_OPTION,
 * VORLANE_TOO_LARGE, VORLANE_NO_MEMORY, VORLANE_BUSY or VORLANE_INTERNAL. *finding is then as it
 * was.
 */
VORLANE_API vorlane_status vorlane_detect(vorlane_context* context, const vorlane_image* page,
                                          const vorlane_detect_options* options,
                                          vorlane_finding* finding) VORLANE_NOEXCEPT;

/*
 * Tells the exact size of the result that vorlane_apply makes of a page. Of `page`, the pixels are
 * not looked at and may be null.
 *
 * Returns VORLANE_OK, or what vorlane_apply would return for these arguments; *width and *height
 * are then unchanged.
 */
VORLANE_API vorlane_status vorlane_result_size(const vorlane_image* page,
                                               const vorlane_finding* finding,
                                               const vorlane_apply_options* options, int32_t* width,
                                               int32_t* height) VORLANE_NOEXCEPT;

/*
 * Tells the most columns and rows that a result can have for any finding on a page of this size, so
 * that memory can be made ready before the page is looked at. Both are bounds of their own: at one
 * time a result has at most max_growth times the page's pixels.
 *
 * Returns as vorlane_result_size does.
 */
VORLANE_API vorlane_status vorlane_max_result_size(const vorlane_image* page,
                                                   const vorlane_apply_options* options,
                                                   int32_t* width,
                                                   int32_t* height) VORLANE_NOEXCEPT;

/*
 * Makes the upright page: turned by the finding's turn and cut to the upright rectangle around its
 * corners, as far as the turned picture reaches.
 *
 *   context  that no other call is using
 *   page     the one that the finding was made on, or one of the same size; only read
 *   finding  initialised; from vorlane_detect, vorlane_finding_decide, or edited
 *   options  null: the defaults
 *   result   the caller's memory, with its size; receives the page and its size
 *
 * The middle pixel of a page that was turned shows exactly that pixel of the picture which lies
 * nearest to the cut's middle; the page may reach up to two pixels beyond the cut on either side. A
 * page that is only cut holds every pixel that the cut touches.
 *
 * Pages of 1, 8 and 24 bits are read and written where they lie; those of 32 bits pass through 24.
 *
 * Returns VORLANE_OK; VORLANE_BAD_ARGUMENT, VORLANE_BAD_IMAGE (also for a result's stride),
 * VORLANE_BAD_OPTION, VORLANE_BAD_FINDING, VORLANE_TOO_LARGE, VORLANE_TURN_TOO_LARGE,
 * VORLANE_RESULT_TOO_LARGE, VORLANE_RESULT_TOO_SMALL, VORLANE_NOT_CONFIDENT, VORLANE_NO_MEMORY,
 * VORLANE_BUSY or VORLANE_INTERNAL.
 */
VORLANE_API vorlane_status vorlane_apply(vorlane_context* context, const vorlane_image* page,
                                         const vorlane_finding* finding,
                                         const vorlane_apply_options* options,
                                         vorlane_result* result) VORLANE_NOEXCEPT;

/* The bytes that `width` pixels of a format take, which is the least stride; 0 for a width below 1
 * and for an unknown format. */
VORLANE_API size_t vorlane_row_bytes(int32_t format, int32_t width) VORLANE_NOEXCEPT;

/* Words for codes: static English texts in UTF-8, never null; a code that there is not gives
 * "unknown". Names are for programs and stay as they are; texts are for people. */
VORLANE_API const char* vorlane_status_text(vorlane_status status) VORLANE_NOEXCEPT;
VORLANE_API const char* vorlane_confidence_name(int32_t confidence) VORLANE_NOEXCEPT;
VORLANE_API const char* vorlane_evidence_name(int32_t place) VORLANE_NOEXCEPT;
VORLANE_API const char* vorlane_reason_name(int32_t code) VORLANE_NOEXCEPT;
VORLANE_API const char* vorlane_reason_text(int32_t code) VORLANE_NOEXCEPT;
/* What a reason's value counts, "degrees" for one; "" where it has none. */
VORLANE_API const char* vorlane_reason_unit(int32_t code) VORLANE_NOEXCEPT;

/* VORLANE_VERSION_NUMBER of the library that is running. */
VORLANE_API int32_t vorlane_version(void) VORLANE_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif /* VORLANE_VORLANE_H */
