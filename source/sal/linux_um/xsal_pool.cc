// Slab caches on anonymous mappings, the pool of size classes on top of
// them, and the reference count.  None of the library's own code uses
// them: they are a facility for the application.
#include <sys/mman.h>

#include <cstdint>

#include "sal/linux_um/xsal_int.h"

namespace {

// Links of the circular slab lists; the head of a list is in the cache
// record.
struct _SlabLink {
    _SlabLink *next;
    _SlabLink *prev;
};

struct _SlabList {
    _SlabLink link;
    u32 count;
};

} // namespace

struct xsal_mem_cache_s {
    _SlabList full_slabs; // no free object
    _SlabList free_slabs; // at least one free object
    u32 obj_size;
    u32 slab_size;
};

namespace {

struct _Slab {
    _SlabLink link;
    xsal_mem_cache_s *cache;
    char *mem;        // start of the mapping
    char *next_fresh; // first address never handed out
    u32 used;
    u32 limit;        // objects in the slab
    void *free_list;  // returned objects, linked through their first 8 bytes
};

// Slab records and cache records both come from the cache of caches.
constexpr u32 kRecordSize = 56;
static_assert(sizeof(_Slab) == kRecordSize);
static_assert(sizeof(xsal_mem_cache_s) == kRecordSize);

constexpr u32 kHeader = 8; // the slab's address in front of each object
constexpr u32 kSlabSize = 65536;
constexpr u32 kLargeObject = 4096;

xsal_mem_cache_s g_sal_cache_cache;
bool g_sal_cache_cache_ready;
// Guards the cache of caches, which every cache draws its slab records
// from: caches used by different threads make and free slabs at once.
pthread_mutex_t g_sal_cache_cache_lock = PTHREAD_MUTEX_INITIALIZER;

// Distance of objects in a slab.  An object has room for the free-list
// link and is 8-byte aligned: its size is rounded up to a multiple of 8.
u32 _stride(u32 obj_size)
{
    const u32 rounded = obj_size < 8 ? 8 : (obj_size + 7u) & ~7u;
    return rounded + kHeader;
}

void _list_init(_SlabList *list)
{
    list->link.next = list->link.prev = &list->link;
    list->count = 0;
}

bool _list_empty(const _SlabList *list)
{
    return list->link.next == &list->link;
}

void _list_remove(_SlabList *list, _Slab *slab)
{
    slab->link.prev->next = slab->link.next;
    slab->link.next->prev = slab->link.prev;
    list->count--;
}

void _list_add(_SlabList *list, _Slab *slab, bool at_tail)
{
    _SlabLink *before = at_tail ? list->link.prev : &list->link;
    slab->link.prev = before;
    slab->link.next = before->next;
    before->next->prev = &slab->link;
    before->next = &slab->link;
    list->count++;
}

void _cache_cache_prepare()
{
    if (!g_sal_cache_cache_ready) {
        _list_init(&g_sal_cache_cache.full_slabs);
        _list_init(&g_sal_cache_cache.free_slabs);
        g_sal_cache_cache.obj_size = kRecordSize;
        g_sal_cache_cache.slab_size = kSlabSize;
        g_sal_cache_cache_ready = true;
    }
}

void *_cache_alloc(xsal_mem_cache_s *cache);
void _cache_free(void *obj);

// A record from the cache of caches, under its lock.
void *_record_alloc()
{
    tide::PthreadLock lock(&g_sal_cache_cache_lock);
    _cache_cache_prepare();
    return _cache_alloc(&g_sal_cache_cache);
}

void _record_free(void *record)
{
    tide::PthreadLock lock(&g_sal_cache_cache_lock);
    _cache_free(record);
}

void _new_slab(xsal_mem_cache_s *cache)
{
    void *map = mmap(nullptr, cache->slab_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED) {
        return;
    }
    auto *mem = static_cast<char *>(map);
    _Slab *slab;
    u32 usable = cache->slab_size;
    if (cache == &g_sal_cache_cache) {
        // The cache of caches keeps its slab record at the end of the
        // slab itself, which ends the recursion.
        usable -= kRecordSize;
        slab = reinterpret_cast<_Slab *>(mem + usable);
    } else {
        slab = static_cast<_Slab *>(_record_alloc());
        if (slab == nullptr) {
            munmap(map, cache->slab_size);
            return;
        }
    }
    slab->cache = cache;
    slab->mem = mem;
    slab->next_fresh = mem;
    slab->free_list = nullptr;
    slab->used = 0;
    slab->limit = usable / _stride(cache->obj_size);
    _list_add(&cache->free_slabs, slab, true);
}

void *_cache_alloc(xsal_mem_cache_s *cache)
{
    if (_list_empty(&cache->free_slabs)) {
        _new_slab(cache);
        if (_list_empty(&cache->free_slabs)) {
            return nullptr;
        }
    }
    auto *slab = reinterpret_cast<_Slab *>(cache->free_slabs.link.next);
    void *obj;
    if (slab->free_list != nullptr) {
        obj = slab->free_list;
        slab->free_list = *static_cast<void **>(obj);
    } else {
        *reinterpret_cast<_Slab **>(slab->next_fresh) = slab;
        obj = slab->next_fresh + kHeader;
        slab->next_fresh += _stride(cache->obj_size);
    }
    if (++slab->used == slab->limit) {
        _list_remove(&cache->free_slabs, slab);
        _list_add(&cache->full_slabs, slab, true);
    }
    return obj;
}

void _cache_free(void *obj)
{
    _Slab *slab = *reinterpret_cast<_Slab **>(static_cast<char *>(obj) - kHeader);
    xsal_mem_cache_s *cache = slab->cache;
    *static_cast<void **>(obj) = slab->free_list;
    slab->free_list = obj;
    slab->used--;
    if (slab->used == slab->limit - 1) {
        _list_remove(&cache->full_slabs, slab);
        _list_add(&cache->free_slabs, slab, false);
    }
    if (slab->used == 0) {
        // An empty slab goes back to the system at once.
        _list_remove(&cache->free_slabs, slab);
        munmap(slab->mem, cache->slab_size);
        if (cache != &g_sal_cache_cache) {
            _cache_free(slab); // the caller holds the cache-of-caches lock
        }
    }
}

// ---- the pool ---------------------------------------------------------------

struct _PoolRow {
    u32 block_size;
    xsal_mem_cache_s *cache;
    xsal_mutex_t mutex;
    u32 used_count;
};

constexpr u32 kPoolRows = 28;
// Row number of a block too large for every row, taken from xsal_malloc.
constexpr u8 kLargeRow = 28;

_PoolRow g_sal_mem_block_info[kPoolRows + 1] = {
    {4, nullptr, nullptr, 0},        {8, nullptr, nullptr, 0},        {16, nullptr, nullptr, 0},
    {32, nullptr, nullptr, 0},       {64, nullptr, nullptr, 0},       {96, nullptr, nullptr, 0},
    {128, nullptr, nullptr, 0},      {192, nullptr, nullptr, 0},      {256, nullptr, nullptr, 0},
    {384, nullptr, nullptr, 0},      {512, nullptr, nullptr, 0},      {768, nullptr, nullptr, 0},
    {1024, nullptr, nullptr, 0},     {1536, nullptr, nullptr, 0},     {2048, nullptr, nullptr, 0},
    {4096, nullptr, nullptr, 0},     {8192, nullptr, nullptr, 0},     {16384, nullptr, nullptr, 0},
    {32768, nullptr, nullptr, 0},    {65536, nullptr, nullptr, 0},    {126976, nullptr, nullptr, 0},
    {262144, nullptr, nullptr, 0},   {524288, nullptr, nullptr, 0},   {1048576, nullptr, nullptr, 0},
    {2097152, nullptr, nullptr, 0},  {4194304, nullptr, nullptr, 0},  {8388608, nullptr, nullptr, 0},
    {16777216, nullptr, nullptr, 0}, {0xFFFFFFFFu, nullptr, nullptr, 0},
};

// In front of every pool block.
struct _PoolHeader {
    u8 row;
    u8 reserved[7];
    const char *tag;
};
static_assert(sizeof(_PoolHeader) == 16);

// The first row that holds `size`, by a linear walk; -1 above them all.
int _mem_pool_get_block_index(u32 size, u32 *row)
{
    for (u32 i = 0; g_sal_mem_block_info[i].block_size != 0xFFFFFFFFu; i++) {
        if (g_sal_mem_block_info[i].block_size >= size) {
            *row = i;
            return 0;
        }
    }
    return -1;
}

#define XSAL_POOL_DBG(...) SHR_LOG_DBG(SHR_NO_CHIP, SHR_MOD_TOP, __VA_ARGS__)

pthread_mutex_t g_xsal_malloc_list_lock = PTHREAD_MUTEX_INITIALIZER;

constexpr u32 kKrefSaturated = 0xFFFFFFFFu;

// An attempt to go below 0, recorded in the bring-up log.
void _kref_underflow()
{
    xsal_log(SHR_NO_CHIP, SHR_LOG_ERROR, __FILE__, __LINE__, "xsal_kref_t: underflow; use-after-free.\n");
}

} // namespace

extern "C" {

// ---- allocation bookkeeping: none is kept ---------------------------------

void xsal_malloc_clean(void) {}

void xsal_malloc_resource_usage(void) {}

void xsal_malloc_stat(void) {}

u64 xsal_malloc_total(void)
{
    return 0;
}

int xsal_malloc_get_next(void)
{
    return -1;
}

int xsal_malloc_list_lock(void)
{
    return pthread_mutex_lock(&g_xsal_malloc_list_lock) == 0 ? 0 : -1;
}

int xsal_malloc_list_unlock(void)
{
    return pthread_mutex_unlock(&g_xsal_malloc_list_lock) == 0 ? 0 : -1;
}

// ---- slab caches --------------------------------------------------------------

void xsal_mem_cache_init(void)
{
    tide::PthreadLock lock(&g_sal_cache_cache_lock);
    _cache_cache_prepare();
}

xsal_mem_cache_t xsal_mem_cache_create(u32 obj_size)
{
    if (obj_size == 0 || obj_size > 0xFFFFFFFFu - 16) {
        return nullptr;
    }
    auto *cache = static_cast<xsal_mem_cache_s *>(_record_alloc());
    if (cache == nullptr) {
        return nullptr;
    }
    _list_init(&cache->full_slabs);
    _list_init(&cache->free_slabs);
    cache->obj_size = obj_size;
    cache->slab_size = obj_size < kLargeObject ? kSlabSize : _stride(obj_size);
    return cache;
}

void *xsal_mem_cache_alloc(xsal_mem_cache_t cache)
{
    return cache != nullptr ? _cache_alloc(cache) : nullptr;
}

void xsal_mem_cache_free(void *obj)
{
    if (obj == nullptr) {
        return;
    }
    _Slab *slab = *reinterpret_cast<_Slab **>(static_cast<char *>(obj) - kHeader);
    if (slab->used == 1) {
        // The slab goes away and its record back to the cache of caches.
        tide::PthreadLock lock(&g_sal_cache_cache_lock);
        _cache_free(obj);
    } else {
        _cache_free(obj);
    }
}

void xsal_mem_cache_destroy(xsal_mem_cache_t cache)
{
    if (cache != nullptr) {
        _record_free(cache);
    }
}

void xsal_mem_cache_stat(xsal_mem_cache_t cache)
{
    if (cache == nullptr) {
        return;
    }
    XSAL_POOL_DBG("----obj_size = %0u, slab_size = %0u----\n", cache->obj_size, cache->slab_size);
    const _SlabList *lists[] = {&cache->free_slabs, &cache->full_slabs};
    const char *names[] = {"free_slabs:", "full_slabs:"};
    for (int i = 0; i < 2; i++) {
        for (const _SlabLink *l = lists[i]->link.next; l != &lists[i]->link; l = l->next) {
            const auto *slab = reinterpret_cast<const _Slab *>(l);
            XSAL_POOL_DBG("%s", names[i]);
            XSAL_POOL_DBG("used = %0u, limit = %0u\n", slab->used, slab->limit);
        }
    }
}

// ---- the pool -----------------------------------------------------------------

void xsal_mem_pool_clean(void)
{
    for (u32 i = 0; i < kPoolRows; i++) {
        _PoolRow &row = g_sal_mem_block_info[i];
        xsal_mem_cache_destroy(row.cache);
        xsal_mutex_destroy_(row.mutex, __FILE__, __LINE__);
        row.cache = nullptr;
        row.mutex = nullptr;
        row.used_count = 0;
    }
}

int xsal_mem_pool_create(void)
{
    xsal_mem_cache_init();
    if (g_sal_mem_block_info[0].cache != nullptr) {
        return 0; // made already
    }
    for (u32 i = 0; i < kPoolRows; i++) {
        _PoolRow &row = g_sal_mem_block_info[i];
        row.cache = xsal_mem_cache_create(row.block_size + sizeof(_PoolHeader));
        row.mutex = xsal_mutex_create_("mem pool", __FILE__, __LINE__);
        row.used_count = 0;
        if (row.cache == nullptr || row.mutex == nullptr) {
            xsal_mem_pool_clean();
            return -1;
        }
    }
    XSAL_POOL_DBG("----xsal_mem_pool_create begin----\n");
    for (u32 i = 0; i < kPoolRows; i++) {
        XSAL_POOL_DBG("g_sal_mem_block_info[%0u].block_size = %0u, g_sal_mem_block_info[%0u].cache = %p\n", i,
                      g_sal_mem_block_info[i].block_size, i, static_cast<void *>(g_sal_mem_block_info[i].cache));
    }
    XSAL_POOL_DBG("----xsal_mem_pool_create end----\n\n");
    return 0;
}

void *xsal_malloc_from_mem_pool(u32 size, const char *tag)
{
    if (size == 0) {
        return nullptr;
    }
    u32 index;
    _PoolHeader *header;
    if (_mem_pool_get_block_index(size, &index) != 0) {
        header = static_cast<_PoolHeader *>(xsal_malloc(static_cast<u64>(size) + sizeof(_PoolHeader), tag,
                                                        SHR_MOD_COMMON));
        if (header == nullptr) {
            return nullptr;
        }
        header->row = kLargeRow;
    } else {
        _PoolRow &row = g_sal_mem_block_info[index];
        if (row.cache == nullptr) {
            return nullptr; // no pool
        }
        {
            tide::MutexGuard guard(row.mutex);
            header = static_cast<_PoolHeader *>(xsal_mem_cache_alloc(row.cache));
            if (header == nullptr) {
                return nullptr;
            }
            row.used_count++;
        }
        header->row = static_cast<u8>(index);
        XSAL_POOL_DBG("----xsal_malloc_from_mem_pool begin----\n");
        XSAL_POOL_DBG("g_sal_mem_block_info[%0u].block_size = %0u, g_sal_mem_block_info[%0u].used_count = %0u, "
                      "ptr = %p\n",
                      index, row.block_size, index, row.used_count, static_cast<void *>(header));
        XSAL_POOL_DBG("----xsal_malloc_from_mem_pool end----\n\n");
    }
    header->tag = tag;
    return header + 1;
}

void xsal_free_to_mem_pool(void *block)
{
    if (block == nullptr) {
        return;
    }
    auto *header = static_cast<_PoolHeader *>(block) - 1;
    const u32 index = header->row;
    if (index == kLargeRow) {
        xsal_mem_free(header);
        return;
    }
    _PoolRow &row = g_sal_mem_block_info[index];
    {
        tide::MutexGuard guard(row.mutex);
        xsal_mem_cache_free(header);
        row.used_count--;
    }
    XSAL_POOL_DBG("----xsal_free_to_mem_pool begin----\n");
    XSAL_POOL_DBG("g_sal_mem_block_info[%0u].block_size = %0u, g_sal_mem_block_info[%0u].used_count = %0u\n", index,
                  row.block_size, index, row.used_count);
    XSAL_POOL_DBG("----xsal_free_to_mem_pool end----\n\n");
}

void xsal_mem_pool_stat(void)
{
    for (u32 i = 0; i < kPoolRows; i++) {
        xsal_mem_cache_stat(g_sal_mem_block_info[i].cache);
    }
}

// ---- reference count ----------------------------------------------------------

int xsal_kref_init(xsal_kref_t *kref)
{
    if (kref == nullptr) {
        return -4;
    }
    kref->mutex = xsal_mutex_create_("kref", __FILE__, __LINE__);
    if (kref->mutex == nullptr) {
        return -2;
    }
    kref->refcount = 1;
    return 0;
}

int xsal_kref_deinit(xsal_kref_t *kref)
{
    if (kref == nullptr) {
        return -4;
    }
    xsal_mutex_destroy_(kref->mutex, __FILE__, __LINE__);
    kref->mutex = nullptr;
    return 0;
}

u32 xsal_kref_refount_read(xsal_kref_t *kref)
{
    if (kref == nullptr) {
        return 0;
    }
    tide::MutexGuard guard(kref->mutex);
    return kref->refcount;
}

void xsal_kref_get(xsal_kref_t *kref)
{
    if (kref == nullptr) {
        return;
    }
    tide::MutexGuard guard(kref->mutex);
    if (kref->refcount != kKrefSaturated) {
        kref->refcount++;
    }
}

int xsal_kref_refcount_dec_not_one(xsal_kref_t *kref)
{
    if (kref == nullptr) {
        return 0;
    }
    tide::MutexGuard guard(kref->mutex);
    if (kref->refcount >= kKrefSaturated) {
        return 1; // saturated: it stays
    }
    if (kref->refcount == 1) {
        return 0;
    }
    if (kref->refcount == 0) {
        _kref_underflow();
        return 1;
    }
    kref->refcount--;
    return 1;
}

int xsal_kref_refcount_dec_and_test(xsal_kref_t *kref)
{
    if (kref == nullptr) {
        return 0;
    }
    tide::MutexGuard guard(kref->mutex);
    if (kref->refcount == 0) {
        _kref_underflow();
        return 0;
    }
    if (kref->refcount == kKrefSaturated) {
        return 0;
    }
    return --kref->refcount == 0 ? 1 : 0;
}

int xsal_kref_refcount_dec_and_mutex_lock(xsal_kref_t *kref, xsal_mutex_t mutex)
{
    if (xsal_kref_refcount_dec_not_one(kref) != 0 || kref == nullptr) {
        return 0;
    }
    // Possibly the last reference: drop it with the caller's lock held.
    xsal_mutex_lock_(mutex, __FILE__, __LINE__);
    if (xsal_kref_refcount_dec_and_test(kref) != 0) {
        return 1;
    }
    xsal_mutex_unlock_(mutex, __FILE__, __LINE__);
    return 0;
}

int xsal_kref_put_mutex(xsal_kref_t *kref, xsal_kref_release_t release, xsal_mutex_t mutex, void *arg)
{
    if (xsal_kref_refcount_dec_and_mutex_lock(kref, mutex) == 0) {
        return 0;
    }
    if (release != nullptr) {
        release(kref, arg); // gives `mutex` back
    } else {
        xsal_mutex_unlock_(mutex, __FILE__, __LINE__);
    }
    return 1;
}

} // extern "C"
