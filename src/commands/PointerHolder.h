#pragma once

// Carries a pointer that it does not own, so that it can stand among a command's options.
class PointerHolder
{
public:
    [[nodiscard]] static PointerHolder pointerHolderWithPtr(void* ptr)
    {
        PointerHolder holder;
        holder.setPointer(ptr);
        return holder;
    }
    // libcurl takes callbacks through the same variadic call; POSIX lets a function pointer travel as void*.
    template <typename Result, typename... Args>
    [[nodiscard]] static PointerHolder pointerHolderWithPtr(Result (*function)(Args...))
    {
        return pointerHolderWithPtr(reinterpret_cast<void*>(function));
    }

    [[nodiscard]] void* pointer() const { return m_ptr; }
    void setPointer(void* ptr) { m_ptr = ptr; }

private:
    void* m_ptr = nullptr;
};
