// MIT License.
#include "support/memory/quick_allocator.h"

#include <cstdio>
#include <mutex>

#include "support/debugger_output.h"

namespace memory {

namespace {

constexpr size_t alignment = 16;
static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= alignment);

constexpr size_t round_up(size_t size) {
  return (size + alignment - 1) / alignment * alignment;
}

// The standard pools, by size. The audio thread may need those up to 128 bytes, so their first blocks are allocated up
// front.
struct pool_plan {
  size_t element_size, block_elements, initial_blocks;
};
constexpr pool_plan standard_pools[] = {
    {16, 2048, 4},  //
    {32, 1024, 1},  //
    {64, 512, 32},  //
    {128, 256, 4},  //
    {256, 128, 0},  //
    {512, 64, 0},   //
    {1024, 32, 0},
};

}  // namespace

quick_allocator_impl::quick_allocator_impl(size_t element_size, size_t block_elements, size_t initial_blocks)
    : element_size_(element_size),
      stride_(round_up(element_size)),
      block_elements_(block_elements),
      block_size_(stride_ * block_elements + header_size) {
  static_assert(sizeof(block_header) <= header_size && sizeof(free_element) <= link_size);
  for (size_t block = 0; block < initial_blocks; ++block) add_block();
}

quick_allocator_impl::~quick_allocator_impl() {
  if (bytes_in_use() != 0) report_memory_in_use();
  block_header* block = nullptr;
  {
    const std::lock_guard guard(lock_);
    block = blocks_.exchange(nullptr, std::memory_order_acquire);
  }
  free_list_.store(nullptr, std::memory_order_relaxed);
  free_count_.store(0, std::memory_order_relaxed);
  while (block != nullptr) {
    block_header* const next = block->next;
    ::operator delete(block);
    bytes_reserved_.fetch_sub(block_size_, std::memory_order_relaxed);
    block = next;
  }
}

void quick_allocator_impl::report_memory_in_use() const {
  char text[200];
  std::snprintf(text, sizeof text, "quick_allocator_impl destructed memory still in use! size:%i count:%i",
                static_cast<int>(element_size_), static_cast<int>(bytes_in_use() / element_size_));
  halvern::write_to_debugger(text);
  halvern::write_to_debugger("\n");
}

void* quick_allocator_impl::allocate() {
  bytes_in_use_.fetch_add(element_size_, std::memory_order_relaxed);
  free_element* element = pop();
  while (element == nullptr) {
    try {
      add_block();
    } catch (...) {
      bytes_in_use_.fetch_sub(element_size_, std::memory_order_relaxed);
      throw;
    }
    element = pop();
  }
  free_count_.fetch_sub(1, std::memory_order_relaxed);
  return element;
}

// The lock keeps the head from being popped and pushed back between reading its link and the swap (the ABA problem).
// Pushing takes no lock, so the swap may still fail.
quick_allocator_impl::free_element* quick_allocator_impl::pop() {
  const std::lock_guard guard(lock_);
  free_element* head = free_list_.load(std::memory_order_acquire);
  while (head != nullptr && !free_list_.compare_exchange_weak(head, head->next, std::memory_order_acquire)) {
  }
  return head;
}

void quick_allocator_impl::release(void* element) {
  bytes_in_use_.fetch_sub(element_size_, std::memory_order_relaxed);
  auto* const freed = new (element) free_element;
  push_chain(freed, freed);
  free_count_.fetch_add(1, std::memory_order_relaxed);
}

void quick_allocator_impl::push_chain(free_element* first, free_element* last) {
  free_element* head = free_list_.load(std::memory_order_relaxed);
  do {
    last->next = head;
  } while (!free_list_.compare_exchange_weak(head, first, std::memory_order_release, std::memory_order_relaxed));
}

void quick_allocator_impl::add_block() {
  auto* const bytes = static_cast<std::byte*>(::operator new(block_size_));
  bytes_reserved_.fetch_add(block_size_, std::memory_order_relaxed);
  auto* const block = new (bytes) block_header;
  block->next = blocks_.load(std::memory_order_relaxed);
  while (!blocks_.compare_exchange_weak(block->next, block, std::memory_order_release, std::memory_order_relaxed)) {
  }

  free_element* first = nullptr;
  free_element* last = nullptr;
  for (size_t index = block_elements_; index-- > 0;) {
    first = new (bytes + header_size + index * stride_) free_element{first};
    if (last == nullptr) last = first;
  }
  push_chain(first, last);
  free_count_.fetch_add(block_elements_, std::memory_order_relaxed);
}

allocator_registry& allocator_registry::instance() {
  static auto* const registry = new allocator_registry;
  return *registry;
}

allocator_registry::allocator_registry() {
  for (const auto& plan : standard_pools) make_pool(plan.element_size, plan.block_elements, plan.initial_blocks);
}

quick_allocator_impl* allocator_registry::get_pool(size_t size, size_t block_elements, size_t initial_blocks) {
  for (size_t index = 0; index < std::size(standard_pools); ++index) {
    if (size > standard_pools[index].element_size) continue;
    const std::lock_guard guard(lock_);
    return pools_[index].get();
  }
  return make_pool(size, block_elements, initial_blocks);
}

quick_allocator_impl* allocator_registry::make_pool(size_t size, size_t block_elements, size_t initial_blocks) {
  auto pool = std::make_unique<quick_allocator_impl>(size, block_elements, initial_blocks);
  const std::lock_guard guard(lock_);
  pools_.push_back(std::move(pool));
  return pools_.back().get();
}

// In list order.
allocator_registry::~allocator_registry() {
  for (auto& pool : pools_) pool.reset();
}

}  // namespace memory
