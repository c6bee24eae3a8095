/* vkpch: string primitives with a C ABI.
 *
 * Strings are a pointer plus a signed 32-bit length in code units; only the
 * _Z functions take zero-terminated strings. Every function returns a
 * vkpStatus: 0 is success, negative values are errors (nothing was written),
 * positive values are warnings. Arguments are checked before any data is
 * touched: null pointers first (VKP_ERR_NULL), then counts (VKP_ERR_SIZE),
 * then negative lengths and ranges (VKP_ERR_LENGTH).
 *
 * What a call writes: only the outputs its parameters name, and within them
 * only the units of the result it reports (a length, a count of records, a
 * result word), never beyond a capacity it was given. Two exceptions: the
 * UTF converters may also write scratch units anywhere in their destination
 * below the capacity passed in *pDstLen, behind the units they report; and
 * a regular-expression search writes the work area of the pattern block it
 * is given (so one block serves one thread at a time). Inputs are read only
 * within their lengths, except that a regular-expression search reads one
 * byte behind the subject for the word-boundary anchors.
 *
 * The library owns no buffers, allocates nothing (except the InitAlloc
 * functions) and keeps no state beyond the processor variant chosen when it
 * is loaded (and the processor's cache size, read once by the copy kernels).
 * All functions are reentrant on distinct data.
 */
#ifndef VKPCH_H
#define VKPCH_H

#ifdef __cplusplus
extern "C" {
#endif

#if defined(VKPCH_BUILDING)
#  if defined(_WIN32)
#    define VKPCH_API
#  else
#    define VKPCH_API __attribute__((visibility("default")))
#  endif
#elif defined(_WIN32) && !defined(VKPCH_STATIC)
#  define VKPCH_API __declspec(dllimport)
#else
#  define VKPCH_API
#endif

typedef unsigned char  vkp8u;   /* byte code unit */
typedef unsigned short vkp16u;  /* UTF-16 code unit */
typedef unsigned int   vkp32u;  /* 32-bit value (hashes, code points) */
typedef int            vkpStatus;

/* Result codes. */
enum vkpStatusCode {
    VKP_OK                  = 0,    /* success; also a search that finds nothing */
    VKP_WARN_FEW_RECORDS    = 12,   /* match found, result array shorter than the group count */
    VKP_WARN_SLOTS_FULL     = 26,   /* all output slots used, source text remains */
    VKP_WARN_PIECE_CUT      = 27,   /* a piece longer than its slot was cut */
    VKP_ERR_NO_SUCH_ID      = -2,   /* no slot holds that pattern identifier */
    VKP_ERR_ZERO_ID         = -5,   /* pattern identifier 0 */
    VKP_ERR_SIZE            = -6,   /* a count or size below 1 */
    VKP_ERR_FORMAT          = -7,   /* format value other than 0 or 1 */
    VKP_ERR_NULL            = -8,   /* null pointer argument; allocation failure */
    VKP_ERR_SET_FULL        = -9,   /* the pattern set is full */
    VKP_ERR_LENGTH          = -119, /* negative length, index or range outside the string */
    VKP_ERR_PROPERTY        = -183, /* bad \p or \P property name, or \x{ without } */
    VKP_ERR_CLASS           = -184, /* character-class error */
    VKP_ERR_GROUP_NUMBER    = -185, /* bad group number */
    VKP_ERR_PARENTHESIS     = -186, /* parenthesis or group error */
    VKP_ERR_QUANTIFIER      = -187, /* quantifier error */
    VKP_ERR_MATCH_LIMIT     = -188, /* no match, and the match budget ran out */
    VKP_ERR_NOT_COMPILED    = -189, /* the block is not a compiled pattern */
    VKP_ERR_OPTION          = -190  /* unknown letter in the options string */
};

/* ---------------------------------------------------------------------------
 * Version query
 * ------------------------------------------------------------------------- */

/* A constant record owned by the library; never free it. */
typedef struct vkpLibraryVersion {
    int         major;       /* 8 */
    int         minor;       /* 2 */
    int         majorBuild;  /* 3 */
    int         build;       /* revision */
    char        cpuTag[4];   /* processor variant tag, zero-padded: "u8" or "n8" */
    const char* name;        /* "vkpCH SSSE3 (u8)" or "vkpCH Atom (n8)" */
    const char* version;     /* "8.2.3 (r48108)" */
    const char* buildDate;
} vkpLibraryVersion;

/* The record of the processor variant chosen when the library was loaded.
 * Never null. */
VKPCH_API const vkpLibraryVersion* vkpchGetLibVersion(void);

/* ---------------------------------------------------------------------------
 * Substring and character search
 *
 * On success *pIndex is the zero-based position of the occurrence, or -1 when
 * there is none (not an error). An empty needle is reported as absent (-1).
 * Find returns the leftmost occurrence, FindRev the rightmost one.
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsFind_8u(const vkp8u* pSrc, int len, const vkp8u* pFind, int lenFind, int* pIndex);
VKPCH_API vkpStatus vkpsFind_16u(const vkp16u* pSrc, int len, const vkp16u* pFind, int lenFind, int* pIndex);
VKPCH_API vkpStatus vkpsFindRev_8u(const vkp8u* pSrc, int len, const vkp8u* pFind, int lenFind, int* pIndex);
VKPCH_API vkpStatus vkpsFindRev_16u(const vkp16u* pSrc, int len, const vkp16u* pFind, int lenFind, int* pIndex);

VKPCH_API vkpStatus vkpsFindC_8u(const vkp8u* pSrc, int len, vkp8u valFind, int* pIndex);
VKPCH_API vkpStatus vkpsFindC_16u(const vkp16u* pSrc, int len, vkp16u valFind, int* pIndex);
VKPCH_API vkpStatus vkpsFindRevC_8u(const vkp8u* pSrc, int len, vkp8u valFind, int* pIndex);
VKPCH_API vkpStatus vkpsFindRevC_16u(const vkp16u* pSrc, int len, vkp16u valFind, int* pIndex);

/* Zero-terminated forms: lengths are measured up to the first zero unit.
 * FindC_Z with valFind 0 reports the position of the terminator. */
VKPCH_API vkpStatus vkpsFind_Z_8u(const vkp8u* pSrcZ, const vkp8u* pFindZ, int* pIndex);
VKPCH_API vkpStatus vkpsFind_Z_16u(const vkp16u* pSrcZ, const vkp16u* pFindZ, int* pIndex);
VKPCH_API vkpStatus vkpsFindC_Z_8u(const vkp8u* pSrcZ, vkp8u valFind, int* pIndex);
VKPCH_API vkpStatus vkpsFindC_Z_16u(const vkp16u* pSrcZ, vkp16u valFind, int* pIndex);

/* ---------------------------------------------------------------------------
 * Character-set search
 *
 * *pIndex is the position of the first (Rev: last) unit of pSrc that equals
 * any of the lenSet units of pSet, or -1. After the argument checks *pIndex
 * is set to -1 before any unit is read; an empty string or set gives -1.
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsFindCAny_8u(const vkp8u* pSrc, int len, const vkp8u* pSet, int lenSet, int* pIndex);
VKPCH_API vkpStatus vkpsFindCAny_16u(const vkp16u* pSrc, int len, const vkp16u* pSet, int lenSet, int* pIndex);
VKPCH_API vkpStatus vkpsFindRevCAny_8u(const vkp8u* pSrc, int len, const vkp8u* pSet, int lenSet, int* pIndex);
VKPCH_API vkpStatus vkpsFindRevCAny_16u(const vkp16u* pSrc, int len, const vkp16u* pSet, int lenSet, int* pIndex);

/* ---------------------------------------------------------------------------
 * Comparison and equality of two strings of the same length
 *
 * Compare: *pResult is pSrc1[i] - pSrc2[i] at the first differing unit (the
 * difference itself, not its sign), or 0. CompareIgnoreCaseLatin folds A-Z
 * (65..90) to a-z first, nothing else; CompareIgnoreCase_16u folds every unit
 * to its simple lower-case mapping. Equal: *pResult is 1 or 0.
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsCompare_8u(const vkp8u* pSrc1, const vkp8u* pSrc2, int len, int* pResult);
VKPCH_API vkpStatus vkpsCompare_16u(const vkp16u* pSrc1, const vkp16u* pSrc2, int len, int* pResult);
VKPCH_API vkpStatus vkpsCompareIgnoreCase_16u(const vkp16u* pSrc1, const vkp16u* pSrc2, int len, int* pResult);
VKPCH_API vkpStatus vkpsCompareIgnoreCaseLatin_8u(const vkp8u* pSrc1, const vkp8u* pSrc2, int len, int* pResult);
VKPCH_API vkpStatus vkpsCompareIgnoreCaseLatin_16u(const vkp16u* pSrc1, const vkp16u* pSrc2, int len, int* pResult);
VKPCH_API vkpStatus vkpsEqual_8u(const vkp8u* pSrc1, const vkp8u* pSrc2, int len, int* pResult);
VKPCH_API vkpStatus vkpsEqual_16u(const vkp16u* pSrc1, const vkp16u* pSrc2, int len, int* pResult);

/* ---------------------------------------------------------------------------
 * Case conversion, out of place (len units to pDst) or in place (_I)
 *
 * Latin forms change only A-Z and a-z. The 16u forms without Latin apply the
 * simple one-unit case mappings of the 16-bit range (no context, no
 * expansion to several units).
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsLowercase_16u(const vkp16u* pSrc, vkp16u* pDst, int len);
VKPCH_API vkpStatus vkpsLowercase_16u_I(vkp16u* pSrcDst, int len);
VKPCH_API vkpStatus vkpsUppercase_16u(const vkp16u* pSrc, vkp16u* pDst, int len);
VKPCH_API vkpStatus vkpsUppercase_16u_I(vkp16u* pSrcDst, int len);
VKPCH_API vkpStatus vkpsLowercaseLatin_8u(const vkp8u* pSrc, vkp8u* pDst, int len);
VKPCH_API vkpStatus vkpsLowercaseLatin_8u_I(vkp8u* pSrcDst, int len);
VKPCH_API vkpStatus vkpsLowercaseLatin_16u(const vkp16u* pSrc, vkp16u* pDst, int len);
VKPCH_API vkpStatus vkpsLowercaseLatin_16u_I(vkp16u* pSrcDst, int len);
VKPCH_API vkpStatus vkpsUppercaseLatin_8u(const vkp8u* pSrc, vkp8u* pDst, int len);
VKPCH_API vkpStatus vkpsUppercaseLatin_8u_I(vkp8u* pSrcDst, int len);
VKPCH_API vkpStatus vkpsUppercaseLatin_16u(const vkp16u* pSrc, vkp16u* pDst, int len);
VKPCH_API vkpStatus vkpsUppercaseLatin_16u_I(vkp16u* pSrcDst, int len);

/* ---------------------------------------------------------------------------
 * Hashing (unsigned 32-bit arithmetic, wrapping)
 *
 * Hash:     h = 0;    h = (h << 1) ^ c for every unit.
 * HashSJ2:  h = 0;    h = h * 31 + c for every unit.
 * HashMSCS: h = 5381; h = (h * 33) ^ c for every unit before the first zero.
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsHash_8u32u(const vkp8u* pSrc, int len, vkp32u* pHash);
VKPCH_API vkpStatus vkpsHash_16u32u(const vkp16u* pSrc, int len, vkp32u* pHash);
VKPCH_API vkpStatus vkpsHashSJ2_8u32u(const vkp8u* pSrc, int len, vkp32u* pHash);
VKPCH_API vkpStatus vkpsHashSJ2_16u32u(const vkp16u* pSrc, int len, vkp32u* pHash);
VKPCH_API vkpStatus vkpsHashMSCS_8u32u(const vkp8u* pSrc, int len, vkp32u* pHash);
VKPCH_API vkpStatus vkpsHashMSCS_16u32u(const vkp16u* pSrc, int len, vkp32u* pHash);

/* ---------------------------------------------------------------------------
 * Concatenation, joining and splitting
 *
 * The caller supplies a destination long enough for the result (the sum of
 * the lengths, plus numSrc - 1 delimiters for ConcatC); the result length is
 * not returned. Sources must not overlap the destination. The _D2L joins
 * check each element when they reach it: a null element (-8) or a negative
 * length (-119) at element k leaves elements 0 to k-1 in pDst.
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsConcat_8u(const vkp8u* pSrc1, int len1, const vkp8u* pSrc2, int len2, vkp8u* pDst);
VKPCH_API vkpStatus vkpsConcat_16u(const vkp16u* pSrc1, int len1, const vkp16u* pSrc2, int len2, vkp16u* pDst);
VKPCH_API vkpStatus vkpsConcat_8u_D2L(const vkp8u* const pSrc[], const int srcLen[], int numSrc, vkp8u* pDst);
VKPCH_API vkpStatus vkpsConcat_16u_D2L(const vkp16u* const pSrc[], const int srcLen[], int numSrc, vkp16u* pDst);
VKPCH_API vkpStatus vkpsConcatC_8u_D2L(const vkp8u* const pSrc[], const int srcLen[], int numSrc, vkp8u delim, vkp8u* pDst);
VKPCH_API vkpStatus vkpsConcatC_16u_D2L(const vkp16u* const pSrc[], const int srcLen[], int numSrc, vkp16u delim, vkp16u* pDst);

/* Cuts pSrc at each delim into the slots pDst[i] of capacity dstLen[i];
 * *pNumDst holds the slot count in and the piece count out; dstLen[i] gets
 * each piece's length. A delimiter at the end yields no empty last piece.
 * Returns 27 (VKP_WARN_PIECE_CUT) when a piece was cut to its slot, 26
 * (VKP_WARN_SLOTS_FULL) when the slots ran out with text left. */
VKPCH_API vkpStatus vkpsSplitC_8u_D2L(const vkp8u* pSrc, int len, vkp8u delim, vkp8u* pDst[], int dstLen[], int* pNumDst);
VKPCH_API vkpStatus vkpsSplitC_16u_D2L(const vkp16u* pSrc, int len, vkp16u delim, vkp16u* pDst[], int dstLen[], int* pNumDst);

/* ---------------------------------------------------------------------------
 * Insert, remove, character replacement
 *
 * Insert yields srcLen + insertLen units (pDst may equal pSrc); with
 * insertLen 0 nothing is written. Remove yields srcLen - len units (pDst must
 * not overlap pSrc). The _I forms work in place and update the length;
 * Insert_I does not check the buffer's capacity. Ranges whose end would
 * overflow a 32-bit int are refused with -119.
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsInsert_8u(const vkp8u* pSrc, int srcLen, const vkp8u* pInsert, int insertLen, vkp8u* pDst, int startIndex);
VKPCH_API vkpStatus vkpsInsert_16u(const vkp16u* pSrc, int srcLen, const vkp16u* pInsert, int insertLen, vkp16u* pDst, int startIndex);
VKPCH_API vkpStatus vkpsInsert_8u_I(const vkp8u* pInsert, int insertLen, vkp8u* pSrcDst, int* pSrcDstLen, int startIndex);
VKPCH_API vkpStatus vkpsInsert_16u_I(const vkp16u* pInsert, int insertLen, vkp16u* pSrcDst, int* pSrcDstLen, int startIndex);
VKPCH_API vkpStatus vkpsRemove_8u(const vkp8u* pSrc, int srcLen, vkp8u* pDst, int startIndex, int len);
VKPCH_API vkpStatus vkpsRemove_16u(const vkp16u* pSrc, int srcLen, vkp16u* pDst, int startIndex, int len);
VKPCH_API vkpStatus vkpsRemove_8u_I(vkp8u* pSrcDst, int* pSrcDstLen, int startIndex, int len);
VKPCH_API vkpStatus vkpsRemove_16u_I(vkp16u* pSrcDst, int* pSrcDstLen, int startIndex, int len);

/* pDst[i] = newVal where pSrc[i] == oldVal, else pSrc[i]; pDst may be pSrc. */
VKPCH_API vkpStatus vkpsReplaceC_8u(const vkp8u* pSrc, vkp8u* pDst, int len, vkp8u oldVal, vkp8u newVal);
VKPCH_API vkpStatus vkpsReplaceC_16u(const vkp16u* pSrc, vkp16u* pDst, int len, vkp16u oldVal, vkp16u newVal);

/* ---------------------------------------------------------------------------
 * Trimming
 *
 * Strips trimUnit (TrimC) or any unit of pTrim[0..trimLen) (the CAny forms)
 * from both ends, the start only or the end only. The kept run goes to the
 * start of pDst (pDst may equal pSrc) and its length to *pDstLen; an empty
 * or fully trimmed string writes nothing to pDst.
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsTrimC_8u(const vkp8u* pSrc, int srcLen, vkp8u trimUnit, vkp8u* pDst, int* pDstLen);
VKPCH_API vkpStatus vkpsTrimC_16u(const vkp16u* pSrc, int srcLen, vkp16u trimUnit, vkp16u* pDst, int* pDstLen);
VKPCH_API vkpStatus vkpsTrimC_8u_I(vkp8u* pSrcDst, int* pLen, vkp8u trimUnit);
VKPCH_API vkpStatus vkpsTrimC_16u_I(vkp16u* pSrcDst, int* pLen, vkp16u trimUnit);
VKPCH_API vkpStatus vkpsTrimCAny_8u(const vkp8u* pSrc, int srcLen, const vkp8u* pTrim, int trimLen, vkp8u* pDst, int* pDstLen);
VKPCH_API vkpStatus vkpsTrimCAny_16u(const vkp16u* pSrc, int srcLen, const vkp16u* pTrim, int trimLen, vkp16u* pDst, int* pDstLen);
VKPCH_API vkpStatus vkpsTrimStartCAny_8u(const vkp8u* pSrc, int srcLen, const vkp8u* pTrim, int trimLen, vkp8u* pDst, int* pDstLen);
VKPCH_API vkpStatus vkpsTrimStartCAny_16u(const vkp16u* pSrc, int srcLen, const vkp16u* pTrim, int trimLen, vkp16u* pDst, int* pDstLen);
VKPCH_API vkpStatus vkpsTrimEndCAny_8u(const vkp8u* pSrc, int srcLen, const vkp8u* pTrim, int trimLen, vkp8u* pDst, int* pDstLen);
VKPCH_API vkpStatus vkpsTrimEndCAny_16u(const vkp16u* pSrc, int srcLen, const vkp16u* pTrim, int trimLen, vkp16u* pDst, int* pDstLen);

/* ---------------------------------------------------------------------------
 * UTF-8 / UTF-16 conversion
 *
 * *pSrcLen: source units in, consumed out; *pDstLen: capacity in, written
 * out (both read as unsigned). Non-zero bigEndian byte-swaps the 16-bit
 * units. Lenient: ill-formed UTF-8 bytes, overlong forms and unpaired
 * surrogates are converted by fixed rules, never rejected. The conversion
 * stops before a character that does not fit or is cut off by the end of
 * the source; it returns 0 then too, so compare *pSrcLen with what you
 * passed.
 * The converters write whole vector blocks: any unit of pDst below the
 * capacity may be overwritten, also behind the *pDstLen units reported.
 * ------------------------------------------------------------------------- */

VKPCH_API vkpStatus vkpsConvertUTF_8u16u(const vkp8u* pSrc, int* pSrcLen, vkp16u* pDst, int* pDstLen, int bigEndian);
VKPCH_API vkpStatus vkpsConvertUTF_16u8u(const vkp16u* pSrc, int* pSrcLen, vkp8u* pDst, int* pDstLen, int bigEndian);


/* ---------------------------------------------------------------------------
 * Regular expressions: the compiled pattern block
 *
 * A compiled pattern lives in one caller-owned block of
 * strlen(pattern) * 24 + 48056 bytes (vkpsRegExpGetSize): the header below,
 * a 48000-byte work area used by searches, then the program, an array of
 * instructionCount 24-byte vkpRegExpInstruction records, and behind it the
 * literal bytes that string instructions point at. A block is usable after
 * a successful vkpsRegExpInit only; one block serves one thread at a time.
 * A copy made for another thread must be the whole block: a search may keep
 * what it works out from the program in the room behind the literal bytes.
 * ------------------------------------------------------------------------- */

#define VKP_REGEXP_MAGIC      0x78456772u
#define VKP_REGEXP_WORK_SIZE  48000
#define VKP_REGEXP_HEAD_SIZE  48032   /* header words + work area */

/* Option bits (the option letters s, m, i, x, g). */
#define VKP_REGEXP_DOTALL     1u
#define VKP_REGEXP_MULTILINE  2u
#define VKP_REGEXP_IGNORECASE 4u
#define VKP_REGEXP_EXTENDED   8u
#define VKP_REGEXP_GLOBAL     16u

/* One instruction of the program. Operands an opcode does not use are not
 * written. */
typedef struct vkpRegExpInstruction {
    vkp32u      op;  /* opcode, 0x10000000 + k */
    int         a;
    int         b;
    int         c;
    const void* d;   /* string instructions: their bytes; scripts: their ranges */
} vkpRegExpInstruction;

typedef struct vkpRegExpState {
    vkp32u magic;             /* VKP_REGEXP_MAGIC after a compile */
    vkp32u options;           /* option bits at the start of the pattern */
    int    instructionCount;
    int    groupCount;        /* 1 + number of capturing groups */
    int    lastLiteralIndex;  /* last top-level literal instruction, -1 none, -2 top-level '|' */
    int    matchLimit;        /* back-tracking depth budget, 10000 after a compile */
    int    format;            /* 1 = UTF-8 subjects, 0 = bytes */
    int    patternKind;       /* 0 general, 1 leading literal, 2 alternation of literals */
    unsigned char workArea[VKP_REGEXP_WORK_SIZE];
    /* followed by instructionCount vkpRegExpInstruction records and the
     * literal bytes */
} vkpRegExpState;

/* One reported group: its first byte and length; {NULL, -1} for a group
 * that did not take part. */
typedef struct vkpRegExpFind {
    const vkp8u* pMatch;
    int          matchLen;
} vkpRegExpFind;

/* Writes the block size for pattern pSrc (it is not validated). */
VKPCH_API vkpStatus vkpsRegExpGetSize(const char* pSrc, int* pSize);

/* Compiles pSrc with the option letters in pOptions (s m i x g; may be
 * NULL) into pState. On a compile error returns its status (-183 to -190)
 * and the byte offset of the error in *pErrOffset; on success *pErrOffset
 * is left alone. Resets the match limit to 10000 and the format to 1. */
VKPCH_API vkpStatus vkpsRegExpInit(const char* pSrc, const char* pOptions, vkpRegExpState* pState, int* pErrOffset);

/* Allocates a block of the right size through vkpMalloc and compiles into
 * it; on failure *ppState is NULL. Release with vkpsRegExpFree. */
VKPCH_API vkpStatus vkpsRegExpInitAlloc(const char* pSrc, const char* pOptions, vkpRegExpState** ppState, int* pErrOffset);

/* Releases a block made by vkpsRegExpInitAlloc. */
VKPCH_API void vkpsRegExpFree(vkpRegExpState* pState);

/* Setters take the value first: the depth budget (0 or more) and the
 * subject format (0 bytes, 1 UTF-8). */
VKPCH_API vkpStatus vkpsRegExpSetMatchLimit(int value, vkpRegExpState* pState);
VKPCH_API vkpStatus vkpsRegExpSetFormat(int format, vkpRegExpState* pState);

/* Searches pSrc[0..srcLen) with a compiled pattern. *pNumMatches holds the
 * capacity of pMatches in records on entry and the records written on exit.
 * Single search: record 0 is the whole match, record k capturing group k.
 * Global search (option g): per match record 0 alone when the pattern has no
 * group, else records 1 to the last group. Returns 0 (also when nothing was
 * found: *pNumMatches = 0), 12 when the array took fewer records than the
 * pattern reports, -188 when no match was found and the budget ran out,
 * -189 when pState is not a compiled pattern. With format 1 the subject is
 * UTF-8. The word-boundary anchors read the byte behind the subject. */
VKPCH_API vkpStatus vkpsRegExpFind_8u(const vkp8u* pSrc, int srcLen, vkpRegExpState* pState, vkpRegExpFind* pMatches, int* pNumMatches);

/* ---------------------------------------------------------------------------
 * Regular expressions: replace
 *
 * A template is parsed once into a caller-owned vkpRegExpReplaceState of
 * vkpsRegExpReplaceGetSize bytes. "$&" is the whole match, "$" + digits a
 * group (above 0; "$01" is group 1); "$" before anything else is -185. A
 * backslash is dropped and only ends the literal text before it ("\$1" is
 * still group 1). The state points into the template text, which must stay
 * alive and unchanged while the state is used.
 * ------------------------------------------------------------------------- */

#define VKP_REPLACE_LITERAL 0x10000001u  /* value bytes of literal text at pText */
#define VKP_REPLACE_GROUP   0x10000002u  /* group number value, 0 = whole match */

typedef struct vkpRegExpReplaceItem {
    vkp32u       kind;   /* VKP_REPLACE_LITERAL or VKP_REPLACE_GROUP */
    int          value;  /* literal length or group number */
    const vkp8u* pText;  /* literal: into the template; unused for a group */
} vkpRegExpReplaceItem;

typedef struct vkpRegExpReplaceState {
    int                   reserved;
    int                   itemCount;
    vkpRegExpReplaceItem* pItems;  /* the items behind this header; NULL for a NULL template */
    /* followed by itemCount items */
} vkpRegExpReplaceState;

/* *pSize = 16 * strlen(pTemplate) + 16 (16 for a NULL template). */
VKPCH_API vkpStatus vkpsRegExpReplaceGetSize(const vkp8u* pTemplate, int* pSize);

/* Parses pTemplate (zero-terminated; NULL gives an empty state). A bad
 * group reference is -185, after which the state must not be used. */
VKPCH_API vkpStatus vkpsRegExpReplaceInit(const vkp8u* pTemplate, vkpRegExpReplaceState* pReplaceState);

/* Writes pSrc[0..*pSrcLen) with the first match (or, with the pattern's
 * option g, every match the record array holds) replaced by the template
 * into pDst[0..*pDstLen). pMatches/pNumMatches are the search's record
 * array as for vkpsRegExpFind_8u; a global replace takes record 0 and every
 * group per match. Without a match the smaller of the two lengths is copied.
 * Otherwise a piece (text before or between matches, one template item, the
 * rest of the source) is written only when it fits strictly within the room
 * left; a reference to a group that did not take part (or that the array
 * did not hold) writes nothing. On return *pSrcLen is the source consumed and
 * *pDstLen the bytes written, so a caller resumes at pSrc + *pSrcLen with a
 * fresh destination. Returns the search's status; on -188 or -189 nothing
 * is written and both lengths are unchanged. */
VKPCH_API vkpStatus vkpsRegExpReplace_8u(const vkp8u* pSrc, int* pSrcLen, vkp8u* pDst, int* pDstLen,
                                         vkpRegExpFind* pMatches, int* pNumMatches, vkpRegExpState* pState,
                                         vkpRegExpReplaceState* pReplaceState);

/* ---------------------------------------------------------------------------
 * Regular expressions: pattern sets
 *
 * A set keeps pointers to up to maxPatterns compiled patterns, each under a
 * non-zero identifier, in a caller-owned block of 12 * maxPatterns + 24
 * bytes. The patterns must outlive the set.
 * ------------------------------------------------------------------------- */

typedef struct vkpRegExpMultiState {
    int                    capacity;
    const vkpRegExpState** pPatterns;  /* capacity slots behind this header, NULL = free */
    int*                   pIds;       /* capacity identifiers behind the slots */
    /* followed by the two arrays */
} vkpRegExpMultiState;

/* One result record per slot. */
typedef struct vkpRegExpMultiFind {
    int            isValid;     /* 1 when the slot held a pattern; untouched otherwise */
    int            patternId;
    int            numMatches;  /* in: capacity of pMatches; out: records written */
    vkpStatus      status;      /* the status of this pattern's search */
    vkpRegExpFind* pMatches;
} vkpRegExpMultiFind;

/* *pSize = 12 * maxPatterns + 24; maxPatterns below 1, or a size beyond an
 * int, is -6. */
VKPCH_API vkpStatus vkpsRegExpMultiGetSize(int maxPatterns, int* pSize);
VKPCH_API vkpStatus vkpsRegExpMultiInit(vkpRegExpMultiState* pState, int maxPatterns);
/* Allocates through vkpMalloc (failure -8, *ppState NULL) and initialises. */
VKPCH_API vkpStatus vkpsRegExpMultiInitAlloc(vkpRegExpMultiState** ppState, int maxPatterns);
/* Releases a set made by vkpsRegExpMultiInitAlloc (as vkpsRegExpFree). */
VKPCH_API void vkpsRegExpMultiFree(vkpRegExpMultiState* pState);

/* Adds into the lowest free slot (-9 when full); identifiers are not
 * checked for duplicates. Delete and Modify act on the lowest slot with
 * the identifier (-2 when none). Identifier 0 is -5. */
VKPCH_API vkpStatus vkpsRegExpMultiAdd(const vkpRegExpState* pPattern, int patternId, vkpRegExpMultiState* pState);
VKPCH_API vkpStatus vkpsRegExpMultiDelete(int patternId, vkpRegExpMultiState* pState);
VKPCH_API vkpStatus vkpsRegExpMultiModify(const vkpRegExpState* pPattern, int patternId, vkpRegExpMultiState* pState);

/* Searches pSrc[0..srcLen) (srcLen at least 1) with every pattern of the
 * set: record i of pResults for slot i, as vkpsRegExpFind_8u with its
 * pMatches and numMatches. Records of free slots are not written. */
VKPCH_API vkpStatus vkpsRegExpMultiFind_8u(const vkp8u* pSrc, int srcLen, vkpRegExpMultiFind* pResults,
                                           const vkpRegExpMultiState* pState);

#ifdef __cplusplus
}
#endif

#endif /* VKPCH_H */
