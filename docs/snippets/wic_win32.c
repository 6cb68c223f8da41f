/* Packed DIBs and the Windows Imaging Component. */
#define COBJMACROS
#define INITGUID
#include <windows.h>
#include <wincodec.h>
#include <kirvo.h>

//! [wic]
/* Any bitmap of WIC as a packed DIB of 24 bits. Its rows come from the top; Kirvo's begin at the
 * bottom, so they are turned over once they are there. */
HRESULT dib_of_wic(IWICBitmapSource *source, HGLOBAL *dib)
{
    IWICBitmapSource *bgr = NULL;
    UINT width, height;
    HRESULT result = WICConvertBitmapSource(&GUID_WICPixelFormat24bppBGR, source, &bgr);
    *dib = NULL;
    if (FAILED(result))
        return result;
    IWICBitmapSource_GetSize(bgr, &width, &height);
    *dib = DibMemAllocEx(width, (int32_t)height, 24);
    result = E_OUTOFMEMORY;
    if (*dib != NULL) {
        BITMAPINFOHEADER *header = GlobalLock(*dib);
        const UINT stride = (width * 24 + 31) / 32 * 4;
        result =
            IWICBitmapSource_CopyPixels(bgr, NULL, stride, stride * height, (BYTE *)(header + 1));
        GlobalUnlock(*dib);
        if (SUCCEEDED(result))
            Dib24Flip(*dib, 0, 0, (int32_t)width, (int32_t)height);
    }
    IWICBitmapSource_Release(bgr);
    return result;
}

/* A packed DIB of 24 bits as a bitmap of WIC, which copies the pixels. */
HRESULT wic_of_dib(IWICImagingFactory *factory, HGLOBAL dib, IWICBitmap **bitmap)
{
    int32_t status;
    const BITMAPINFOHEADER *header = GlobalLock(dib);
    const int32_t width = header->biWidth, height = header->biHeight;
    const UINT stride = ((UINT)width * 24 + 31) / 32 * 4;
    HGLOBAL turned = Dib24DupEx(dib, 0, 0, width, height, &status);
    HRESULT result = E_OUTOFMEMORY;
    GlobalUnlock(dib);
    if (turned != NULL) {
        Dib24Flip(turned, 0, 0, width, height);
        header = GlobalLock(turned);
        result = IWICImagingFactory_CreateBitmapFromMemory(
            factory, (UINT)width, (UINT)height, &GUID_WICPixelFormat24bppBGR, stride,
            stride * (UINT)height, (BYTE *)(header + 1), bitmap);
        GlobalUnlock(turned);
        GlobalFree(turned);
    }
    return result;
}
//! [wic]

int main(void)
{
    int32_t status;
    uint32_t colour = 0;
    IWICImagingFactory *factory = NULL;
    IWICBitmap *bitmap = NULL;
    HGLOBAL dib = Dib24Solid(7, 5, 24, 0x332211, &status), again = NULL;
    DibSetPixelColor(dib, 2, 1, 0x665544);
    CoInitialize(NULL);
    if (FAILED(CoCreateInstance(&CLSID_WICImagingFactory, NULL, CLSCTX_INPROC_SERVER,
                                &IID_IWICImagingFactory, (void **)&factory)) ||
        FAILED(wic_of_dib(factory, dib, &bitmap)) ||
        FAILED(dib_of_wic((IWICBitmapSource *)bitmap, &again)))
        return 1;
    DibGetPixelColor(again, 2, 1, &colour);
    IWICBitmap_Release(bitmap);
    IWICImagingFactory_Release(factory);
    CoUninitialize();
    GlobalFree(again);
    GlobalFree(dib);
    return colour == 0x665544 ? 0 : 1;
}
