#pragma once
// The identifiers of the host's COM classes and interfaces, all of them and only here.
//
// A host puts in its own: replace the eleven numbers behind a name (Data1, Data2, Data3, then the eight bytes of Data4)
// and rebuild Zonwick.dll. Nothing else in the module or in the reference host spells an identifier. The numbers below
// are those of the reference host.

#include <windows.h>

// clang-format off
// class: a settings node, ISettingsNode
#define ZONWICK_CLSID_SETTINGS_NODE 0xb8ec2b96, 0x88b2, 0x4ff6, 0xa9, 0x72, 0xf4, 0xdf, 0x56, 0xa6, 0x8a, 0xb1
// class: copies and clears settings nodes, ISettingsTransfer
#define ZONWICK_CLSID_SETTINGS_TRANSFER 0xd941f7d6, 0xb299, 0x427b, 0x81, 0x0a, 0x6a, 0x79, 0x43, 0x26, 0x09, 0xe8
// class: a page image, IPageImage and IImageLoader
#define ZONWICK_CLSID_PAGE_IMAGE 0x3d985447, 0x4b5f, 0x4b92, 0xb2, 0x61, 0x5d, 0x1f, 0x85, 0x19, 0x51, 0x49
// class: unit conversion, IMeasureUnits
#define ZONWICK_CLSID_MEASURE_UNITS 0x44a1b6f9, 0x6630, 0x496f, 0x99, 0x11, 0x29, 0xa2, 0xd9, 0xb0, 0x42, 0x78
// class: the page display ActiveX control
#define ZONWICK_CLSID_FOLIUM 0x913cc01f, 0xa6d0, 0x40bb, 0xa8, 0x59, 0x2c, 0x9b, 0xe5, 0xc6, 0x45, 0x36
// ISettingsNode
#define ZONWICK_IID_SETTINGS_NODE 0x293e6e40, 0x4c91, 0x4d32, 0xb0, 0x18, 0x69, 0xd6, 0x86, 0xf9, 0xb4, 0xdc
// ISettingsTransfer
#define ZONWICK_IID_SETTINGS_TRANSFER 0x53a8e0fd, 0xf706, 0x4dea, 0x86, 0x38, 0x4b, 0xb7, 0xb1, 0x01, 0x15, 0x34
// IQuire
#define ZONWICK_IID_QUIRE 0x0bdc48b0, 0x511f, 0x4ab5, 0x9e, 0x34, 0x5a, 0x16, 0x96, 0x4b, 0x4d, 0xa0
// IQuireDocument
#define ZONWICK_IID_QUIRE_DOCUMENT 0x34ea48ff, 0x7540, 0x4a26, 0xa5, 0x8f, 0x8a, 0xc2, 0x43, 0x2f, 0xba, 0x90
// IQuirePage
#define ZONWICK_IID_QUIRE_PAGE 0xc0fb9440, 0x427c, 0x4a86, 0x8b, 0xa7, 0x47, 0xe2, 0xd1, 0x5b, 0x9a, 0xe5
// IImageSource
#define ZONWICK_IID_IMAGE_SOURCE 0x8d929839, 0xc4a0, 0x4741, 0x95, 0x7e, 0x8b, 0x9c, 0x03, 0xa2, 0x10, 0xc6
// IImageData
#define ZONWICK_IID_IMAGE_DATA 0xdd9f9fc9, 0x3afd, 0x4f35, 0x94, 0x73, 0x49, 0x45, 0x85, 0xf2, 0x25, 0xcb
// IPageImage of an image that holds a scanned page
#define ZONWICK_IID_PAGE_IMAGE 0x23ed6ab3, 0xbcb6, 0x4e65, 0xb7, 0x57, 0x11, 0x4b, 0xce, 0xca, 0x1a, 0x50
// IPageImage of an image that holds a blank page
#define ZONWICK_IID_BLANK_PAGE_IMAGE 0x9b85de81, 0x6a99, 0x41ec, 0xaa, 0xb0, 0x65, 0x66, 0xa6, 0x52, 0x0e, 0x6a
// IImageLoader
#define ZONWICK_IID_IMAGE_LOADER 0x15cf7493, 0xbfc7, 0x4782, 0x88, 0xab, 0x53, 0xa5, 0xa6, 0x2d, 0x70, 0xb9
// IMeasureUnits
#define ZONWICK_IID_MEASURE_UNITS 0xc41d1057, 0x0b15, 0x42eb, 0x9c, 0x16, 0xbb, 0x92, 0xae, 0x95, 0x2d, 0xc7
// IConfigHost
#define ZONWICK_IID_CONFIG_HOST 0xa0e151e3, 0xb44b, 0x4a7e, 0x91, 0xc9, 0x85, 0x5a, 0x2e, 0x82, 0x32, 0x66
// IConfigScope
#define ZONWICK_IID_CONFIG_SCOPE 0x095ab947, 0x33b8, 0x4a82, 0x9d, 0x97, 0x4b, 0x5b, 0x4d, 0x7b, 0x30, 0xc3
// IFolium
#define ZONWICK_IID_FOLIUM 0x28e387ff, 0x815b, 0x45a1, 0x87, 0x3a, 0xd4, 0x43, 0xc9, 0xcb, 0x86, 0x3d
// the control's outgoing dispatch interface
#define ZONWICK_IID_FOLIUM_EVENTS 0xba42fe5a, 0x30f0, 0x4af9, 0x9f, 0x81, 0xc8, 0xf7, 0x6a, 0x71, 0x62, 0xba
// the control's type library
#define ZONWICK_LIBID_FOLIUM 0x3bbe6f07, 0xf3c6, 0x44e7, 0xa2, 0xdd, 0x29, 0x75, 0x49, 0x59, 0x26, 0x4d
// clang-format on

#ifdef __cplusplus

// Gives an interface its identifier: ZONWICK_UUID(IFolium, ZONWICK_IID_FOLIUM). mingw-w64 has it as __uuidof(IFolium)
// then, other compilers, which take no numbers for that, as host::Iid<IFolium>.
#ifdef __CRT_UUID_DECL
#define ZONWICK_UUID(...) __CRT_UUID_DECL(__VA_ARGS__)
#else
#define ZONWICK_UUID(type, ...) \
    template <>                 \
    inline constexpr GUID host::Iid<type> = host::MakeGuid(__VA_ARGS__);
#endif

namespace host {

// Turns the numbers of one of the names above into a GUID: MakeGuid(ZONWICK_CLSID_FOLIUM).
constexpr GUID MakeGuid(unsigned long data1, unsigned short data2, unsigned short data3, unsigned char b0,
                        unsigned char b1, unsigned char b2, unsigned char b3, unsigned char b4, unsigned char b5,
                        unsigned char b6, unsigned char b7) noexcept {
    return GUID{data1, data2, data3, {b0, b1, b2, b3, b4, b5, b6, b7}};
}

#ifndef __CRT_UUID_DECL
template <class Interface>
inline constexpr GUID Iid = {};
#endif

inline constexpr GUID kClsidSettingsNode = MakeGuid(ZONWICK_CLSID_SETTINGS_NODE);
inline constexpr GUID kClsidSettingsTransfer = MakeGuid(ZONWICK_CLSID_SETTINGS_TRANSFER);
inline constexpr GUID kClsidPageImage = MakeGuid(ZONWICK_CLSID_PAGE_IMAGE);
inline constexpr GUID kClsidMeasureUnits = MakeGuid(ZONWICK_CLSID_MEASURE_UNITS);
inline constexpr GUID kClsidFolium = MakeGuid(ZONWICK_CLSID_FOLIUM);
// The interface that a blank page image is asked for; it has IPageImage's operations under another identifier.
inline constexpr GUID kIidBlankPageImage = MakeGuid(ZONWICK_IID_BLANK_PAGE_IMAGE);
inline constexpr GUID kDiidFoliumEvents = MakeGuid(ZONWICK_IID_FOLIUM_EVENTS);

}  // namespace host

#else

// The numbers as the fields of a GUID in C: static const GUID kFolium = {ZONWICK_GUID_FIELDS(ZONWICK_CLSID_FOLIUM)};
#define ZONWICK_GUID_FIELDS(...) ZONWICK_GUID_FIELDS_(__VA_ARGS__)
#define ZONWICK_GUID_FIELDS_(d1, d2, d3, ...) \
    d1, d2, d3, {                             \
        __VA_ARGS__                           \
    }

#endif
