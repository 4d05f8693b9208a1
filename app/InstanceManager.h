// The list of the running processes of the product, this program among them, in named shared memory.
// The product uses the same class on the same list; some operations are called by the product alone.
#pragma once

#include <afx.h>
#include <afxcoll.h>
#include <afxmt.h>

// Posted to the main window of each listed process; wParam is 0, lParam the process id concerned.
inline constexpr UINT kInstanceAddedMessage = 1946;
inline constexpr UINT kInstanceRemovedMessage = 1947;

inline constexpr DWORD kMaxListedInstances = 1000;

class COXInstanceManager : public CObject
{
    DECLARE_DYNAMIC(COXInstanceManager)

public:
    // Joins the list of the name, or makes it if this is its first process. cbAdditional is the size, in bytes, of
    // a second shared area of free use. With bAddSelf this process enters the list at once. If the shared memory
    // can't be made, every operation gives its failure value, and the process is as if alone.
    COXInstanceManager(const CString& strInstanceName, DWORD cbAdditional, bool bAddSelf);
    virtual ~COXInstanceManager();

    // Adds the process and tells those listed. False if the list is full.
    bool AddInstance(DWORD nProcessId);

    // True if the process was listed and is no longer. The remaining ones are told.
    bool RemoveInstance(DWORD nProcessId);

    // Empties the list and sets the limit to 1. Always false.
    bool ResetInstanceList();

    // The number of listed processes, also of those that died without leaving; 0 without a list.
    DWORD GetInstanceCount();

    // Fills the array with the listed ids in their order of arrival. 1, or 0 without a list.
    int GetInstanceIds(CDWordArray& anIds);

    // True if more than one process is listed.
    bool HasOtherInstances();

    // The limit that ActivateOtherInstance compares with; 0 without a list.
    DWORD GetMaxInstances();

    // Stores the limit. With bCloseSurplus the newest processes above it are asked to close, this one as the last
    // resort. 1, or 0 without a list.
    int SetMaxInstances(DWORD nMaxInstances, bool bCloseSurplus);

    // True if more processes are listed than the limit allows; with bActivate another one's window comes to the front.
    bool ActivateOtherInstance(bool bActivate);

    // The second shared area, mapped once and kept; null without a mapping. Its user holds the additional mutex.
    void* GetAdditionalData();
    CMutex& GetAdditionalDataMutex() { return m_additionalMutex; }
    DWORD GetAdditionalDataSize() const { return m_cbAdditional; }

    // The process's window whose caption begins with the product's word; null if it has none.
    static HWND FindMainWindow(DWORD nProcessId);

    // Posts WM_CLOSE to the process's main window. False if there is none, or if it is disabled by a modal box.
    static bool CloseInstance(DWORD nProcessId);

private:
    struct InstanceList
    {
        DWORD nMaxInstances;
        DWORD nCount;
        DWORD anIds[kMaxListedInstances];
    };
    class CListAccess;

    static void TellInstances(const InstanceList& list, UINT nMessage, DWORD nProcessId);
    static DWORD FindActivationTarget(const InstanceList& list);

    CString m_strInstanceName;
    DWORD m_cbList;       // bytes
    DWORD m_cbAdditional; // bytes
    CMutex m_listMutex;
    CMutex m_additionalMutex;
    HANDLE m_hMapping;
    InstanceList* m_pList; // mapped only during one operation
    void* m_pAdditional;
};

// The list that the product shares.
extern COXInstanceManager g_InstanceManager;
