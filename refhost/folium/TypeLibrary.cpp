#include "refhost/folium/TypeLibrary.h"

#include <array>
#include <iterator>

#include "host/PageDisplay.h"
#include "refhost/folium/Display.h"

namespace folium {

namespace {

constexpr GUID kLibraryId = host::MakeGuid(ZONWICK_LIBID_FOLIUM);

struct EventText {
    FoliumEvent id;
    UINT count;
    const wchar_t* names[4];  // the event's, then its parameters'
};
constexpr EventText kEvents[] = {
    {kFoliumContextMenuRequested, 3, {L"ContextMenuRequested", L"id", L"x", L"y"}},
    {kFoliumRectSelected, 1, {L"RectSelected", L"id"}},
    {kFoliumRectChanged, 1, {L"RectChanged", L"id"}},
    {kFoliumRectAdded, 1, {L"RectAdded", L"id"}},
    {kFoliumRectDeleted, 1, {L"RectDeleted", L"id"}},
    {kFoliumPointerMoved, 2, {L"PointerMoved", L"x", L"y"}},
};

void Check(HRESULT status) {
    if (FAILED(status)) throw _com_error(status);
}

ComPtr<ICreateTypeInfo> MakeEventsInfo(ICreateTypeLib2* library) {
    ComPtr<ICreateTypeInfo> info;
    Check(library->CreateTypeInfo(const_cast<LPOLESTR>(L"_IFoliumEvents"), TKIND_DISPATCH, &info));
    Check(info->SetGuid(host::kDiidFoliumEvents));
    for (UINT i = 0; i < std::size(kEvents); ++i) {
        std::array<ELEMDESC, 3> parameters{};
        for (ELEMDESC& parameter : parameters) {
            parameter.tdesc.vt = VT_I4;
            parameter.paramdesc.wParamFlags = PARAMFLAG_FIN;
        }
        FUNCDESC event = {};
        event.memid = kEvents[i].id;
        event.lprgelemdescParam = parameters.data();
        event.funckind = FUNC_DISPATCH;
        event.invkind = INVOKE_FUNC;
        event.callconv = CC_STDCALL;
        event.cParams = static_cast<SHORT>(kEvents[i].count);
        event.elemdescFunc.tdesc.vt = VT_VOID;
        Check(info->AddFuncDesc(i, &event));
        Check(info->SetFuncAndParamNames(i, const_cast<LPOLESTR*>(kEvents[i].names), kEvents[i].count + 1));
    }
    Check(info->LayOut());
    return info;
}

void AddInterface(ICreateTypeInfo* to, UINT place, ITypeInfo* type, INT flags) {
    HREFTYPE reference = 0;
    Check(to->AddRefTypeInfo(type, &reference));
    Check(to->AddImplType(place, reference));
    Check(to->SetImplTypeFlags(place, flags));
}

}  // namespace

HRESULT MakeClassInfo(ITypeInfo** info) {
    ComPtr<ICreateTypeLib2> library;
    Check(CreateTypeLib2(SYS_WIN64, L"Folium.tlb", &library));
    Check(library->SetName(const_cast<LPOLESTR>(L"FoliumLib")));
    Check(library->SetGuid(kLibraryId));
    Check(library->SetVersion(1, 0));
    const ComPtr<ICreateTypeInfo> events = MakeEventsInfo(library);
    ComPtr<ITypeInfo> eventsInfo;
    Check(events.GetInterfacePtr()->QueryInterface(&eventsInfo));

    ComPtr<ICreateTypeInfo> control;
    Check(library->CreateTypeInfo(const_cast<LPOLESTR>(L"Folium"), TKIND_COCLASS, &control));
    Check(control->SetGuid(host::kClsidFolium));
    Check(control->SetTypeFlags(TYPEFLAG_FCANCREATE | TYPEFLAG_FCONTROL));
    AddInterface(control, 0, eventsInfo, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE);
    Check(control->LayOut());
    return control.GetInterfacePtr()->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(info));
}

}  // namespace folium
