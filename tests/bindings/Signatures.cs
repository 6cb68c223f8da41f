// Lists every function of Kirvo.cs with the types of its result and parameters, and every structure
// with its size. Finds each function in the library.

using System;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using KirvoImaging;

static class Signatures
{
    static void Main()
    {
        foreach (MethodInfo method in typeof(Kirvo).GetMethods())
        {
            if ((method.Attributes & MethodAttributes.PinvokeImpl) == 0)
                continue;
            Marshal.Prelink(method);
            Console.WriteLine("function {0} {1} {2}", method.Name, method.ReturnType.Name,
                string.Join(" ", method.GetParameters().Select(Name)));
        }
        foreach (Type type in new[] { typeof(BITMAPINFOHEADER), typeof(RGBQUAD),
                 typeof(PALETTEENTRY), typeof(RECT), typeof(JpgDecSpec), typeof(KirvoWindowHost) })
            Console.WriteLine("structure {0} {1}", type.Name, Marshal.SizeOf(type));
        foreach (KirvoStatus status in Enum.GetValues(typeof(KirvoStatus)))
            Console.WriteLine("constant {0} {1}", status, (int)status);
        foreach (FieldInfo field in typeof(Kirvo).GetFields())
            Console.WriteLine("constant {0} {1}", field.Name, field.GetRawConstantValue());
    }

    static string Name(ParameterInfo parameter)
    {
        return (parameter.IsOut ? "out:" : parameter.IsIn ? "in:" : "") + parameter.ParameterType.Name;
    }
}
