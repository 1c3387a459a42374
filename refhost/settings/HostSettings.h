#pragma once
// HostSettings.dll: the host's settings store.
//
// Nodes       A node is a view on a place in a tree. Every call that hands out a node makes a new object; two objects
//             for the same place show the same content. Compare contents, not pointers. An object outlives the deletion
//             of its node: it then works on a tree of its own that nobody else sees.
// Members     Values and sub-nodes of one node share one set of names and keep their order. A string, integer or
// boolean
//             is set over any other value, but not over a sub-node, and no sub-node is got under the name of a value:
//             kSettingsWrongKind. Reading a missing value gives kSettingsMissing, a missing sub-node is created by
//             GetSubNode, deleting a missing one gives kSettingsMissing.
// In memory   HostSettingsCreateNode, or host::kClsidSettingsNode through COM.
// In a file   HostSettingsOpenFile gives the root of a tree that was read from a file. Sub-nodes and single writes
//             (SetString ..., DeleteSubNode) work on the tree in memory alone, so looking at a tree never touches the
//             file. The file is written by a commit: HostSettingsCommit of the root, or CopyNode of ISettingsTransfer
//             onto the root. ClearNode of the root followed by CopyNode onto it is one commit, not two. What is not
//             committed when the root is released is dropped.
// Commits     The new tree is written beside the file, flushed and swapped in; the version before is kept as
//             "<file>.bak". "<file>.lock" and "<file>.commit" exist while a commit runs and go away with its process;
//             the first keeps other processes out. A file of such a name that is not the commit's own is neither
//             followed nor removed: the commit fails and names it. A name that is a symbolic link stands for the file
//             that it leads to, and all these files stand beside that one; a file with several names (hard links) is
//             not stored into. Whatever fails or ends in between, the file holds the old or the new tree. A commit that
//             changes nothing writes nothing.
//             When a commit fails, the root again is what it was before ClearNode or CopyNode (single writes before a
//             failed HostSettingsCommit stay, to be committed again). A file that somebody changed since it was read is
//             not overwritten (kSettingsChanged). The tree that did not get into the file is kept as
//             "<file>.refused-<n>", one file for each root that is rewritten when a later refused tree
//             differs; the message tells that name. Open the file anew to go on with its present content.
// The file    UTF-8 JSON: an object is a node, a string, whole number or boolean is a value. Members of any other kind
//             (null, fractions, numbers beyond 64 bits, lists) are kept as they stand; they cannot be read as values.
//             A string that is no valid UTF-16 is stored as the list ["utf-16", unit, unit, ...]; a name has to be
//             valid (kSettingsBadName). A missing file is an empty tree. A file that cannot be read as such a tree is
//             reported with its line (kSettingsDamaged) and never written. A new file is readable by its owner alone;
//             an existing one keeps its access rights.
// Limits      kSettingsMaxDepth levels of nodes, kSettingsMaxFileSize bytes of file, a million sub-nodes taken from a
//             node of another maker.
// Copies      CopyNode adds to the target: a member of the same name is replaced, two sub-nodes of the same name are
//             merged. A node can be copied onto itself, its parents or its descendants. Between two nodes of this store
//             everything is copied. To a node of another maker go strings, integers, booleans and sub-nodes; other
//             kinds cannot be told through ISettingsNode and are left out. ISettingsNode does not list the names of
//             values: from a node of another maker come its sub-nodes and, of the values, those that the node lists
//             through IHostSettingsList; without that interface those whose names are known to be kept by modules of
//             this host.
// Threads     A tree is used by one thread at a time.
// Failures    Every failing status comes with a text for people: HostSettingsLastMessage. Failures to open or commit
// are
//             also traced at severity 2, with source name HostSettings.

#include "host/SettingsStore.h"

// clang-format off
// IHostSettingsList
#define HOST_IID_SETTINGS_LIST 0x58dd344d, 0x16cf, 0x49a7, 0x9f, 0x92, 0x80, 0xbd, 0x2f, 0xa3, 0xc5, 0x53
// clang-format on

constexpr HRESULT kSettingsMissing = static_cast<HRESULT>(0x80070490);    // ERROR_NOT_FOUND
constexpr HRESULT kSettingsWrongKind = static_cast<HRESULT>(0x8007065D);  // ERROR_DATATYPE_MISMATCH
constexpr HRESULT kSettingsBadName = static_cast<HRESULT>(0x8007007B);    // ERROR_INVALID_NAME
constexpr HRESULT kSettingsTooDeep = static_cast<HRESULT>(0x800703E9);    // ERROR_STACK_OVERFLOW
constexpr HRESULT kSettingsDamaged = static_cast<HRESULT>(0x80070570);    // ERROR_FILE_CORRUPT
constexpr HRESULT kSettingsChanged = static_cast<HRESULT>(0x8007051A);    // ERROR_REVISION_MISMATCH
constexpr HRESULT kSettingsBusy = static_cast<HRESULT>(0x80070021);       // ERROR_LOCK_VIOLATION

constexpr int kSettingsMaxDepth = 100;
constexpr unsigned kSettingsMaxFileSize = 64U << 20;

// Lists the values of a node; nodes of this store have it, and others can have it to be copied in full.
struct IHostSettingsList : IUnknown {
    // Names of the values that GetString, GetInt64 or GetBool can read, in the node's order, as GetSubNodeNames does.
    virtual HRESULT STDMETHODCALLTYPE GetValueNames(SAFEARRAY** names) = 0;
};
ZONWICK_UUID(IHostSettingsList, HOST_IID_SETTINGS_LIST)

// Where a commit stands when HostSettingsStep is called. The file changes between kHostStepBackedUp and
// kHostStepSwapped.
enum HostSettingsStepId : int {
    kHostStepLocked = 1,    // holds the lock
    kHostStepCompared = 2,  // the file is what was read
    kHostStepHalfWritten = 3,
    kHostStepWritten = 4,
    kHostStepFlushed = 5,
    kHostStepBackedUp = 6,
    kHostStepSwapped = 7,
    kHostStepLast = kHostStepSwapped,
};

enum HostSettingsKind : int {
    kHostSettingsNode = 1,  // its members follow, up to its kHostSettingsEnd
    kHostSettingsEnd = 2,
    kHostSettingsText = 3,
    kHostSettingsNumber = 4,
    kHostSettingsTruth = 5,
    kHostSettingsOther = 6,  // kept as it stands, cannot be read as a value
};

// One step of a walk. The texts are not NUL-terminated and valid for the length of the call.
struct HostSettingsMember {
    HostSettingsKind kind;
    const wchar_t* name;
    size_t nameLength;
    const wchar_t* text;  // kHostSettingsText
    size_t textLength;
    LONGLONG number;  // kHostSettingsNumber
};

extern "C" {

// Called for each member in the order of the tree; false ends the walk.
using HostSettingsVisit = BOOL(CALLBACK*)(const HostSettingsMember* member, void* context);

// Called at each step of a commit, for hosts that want to know when the file was written, and for tests of what happens
// when the process ends or the disk fails just there. 0 goes
// on, a Win32 error code makes the step fail with it (after kHostStepSwapped it has no effect).
using HostSettingsStep = DWORD(CALLBACK*)(int step, void* context);

// The root node of a file; the caller owns the reference. Fails with null in *root.
HRESULT HostSettingsOpenFile(const wchar_t* path, ISettingsNode** root);
// An empty node in memory.
HRESULT HostSettingsCreateNode(ISettingsNode** node);
// Writes the tree of a root from HostSettingsOpenFile to its file; E_INVALIDARG for any other node.
HRESULT HostSettingsCommit(ISettingsNode* root);
// Shows everything in and below a node of this store, without making any node: a walk for programs that have to know
// what stands in a tree, members that cannot be read as values included. E_INVALIDARG for a node of another maker.
HRESULT HostSettingsWalk(ISettingsNode* node, HostSettingsVisit visit, void* context);
// The text of this process's last failure, never null; the caller frees it.
HRESULT HostSettingsLastMessage(BSTR* text);
// Sets what is called at each step of a commit; null ends that.
void HostSettingsSetStep(HostSettingsStep step, void* context);
// Objects that have not been released. For tests.
LONG HostSettingsLiveObjects(void);
}
